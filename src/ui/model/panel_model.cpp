#include "ui/model/panel_model.h"

#include "profiles/camera_key.h"
#include "profiles/slider_math.h"

namespace mirellon::ui {

bool PanelModel::Load() {
  const bool failed = store_.Load();
  store_.NormalizeNames();
  changed_ = false;
  camera_ = 0;
  iso_ = 0;
  CopyEntry();
  history_.Start(parameters_);
  return failed;
}

bool PanelModel::Save() {
  const bool failed = store_.Save();
  if (!failed) changed_ = false;
  return failed;
}

void PanelModel::ShowPhotograph(const Photograph& photograph) {
  // What could not be saved is kept in memory rather than read away.
  if (!changed_ || !Save()) (void)Load();
  photo_ = {photograph.exif.make, photograph.exif.model, photograph.exif.iso};
  noise_ = photograph.noise;
  Choose(profiles::SelectProfileForImage(store_, photo_, noise_.luminance, noise_.chrominance));
  history_.Start(parameters_);
}

void PanelModel::SelectCamera(std::uint32_t camera) {
  Choose(profiles::SelectEntryOfCamera(store_, camera, photo_.iso, noise_.luminance, noise_.chrominance));
  Record();
}

void PanelModel::SelectIso(std::uint32_t entry) {
  iso_ = entry;
  CopyEntry();
  Record();
}

void PanelModel::Choose(const profiles::ProfileChoice& choice) {
  camera_ = choice.camera;
  iso_ = choice.entry;
  CopyEntry();
}

void PanelModel::CopyEntry() {
  if (const engine::DenoiseParameters* entry = store_.Entry(camera_, iso_); entry != nullptr) {
    parameters_ = *entry;
  }
}

std::vector<std::wstring> PanelModel::CameraNames() const {
  std::vector<std::wstring> names;
  for (const profiles::CameraProfile& camera : store_.cameras()) names.push_back(camera.name);
  return names;
}

std::vector<std::wstring> PanelModel::IsoTexts() const {
  std::vector<std::wstring> texts;
  if (camera_ >= store_.cameraCount()) return texts;
  for (const std::uint32_t speed : store_.cameras()[camera_].isoValues) {
    texts.push_back(std::to_wstring(static_cast<std::int32_t>(speed)));
  }
  return texts;
}

bool PanelModel::Keep(const std::wstring& camera, const std::wstring& iso) {
  parameters_.m_dImmerkaerY = noise_.luminance;
  parameters_.m_dImmerkaerUV = noise_.chrominance;
  if (store_.AddOrReplace(camera, iso, parameters_)) return true;
  changed_ = true;
  SelectCamera(store_.FindCamera(camera));
  return false;
}

bool PanelModel::Delete(Scope scope) {
  if (!CanDelete()) return true;
  const std::uint32_t before = store_.cameraCount();
  const bool refused =
      scope == Scope::kCamera ? store_.DeleteCamera(camera_) : store_.DeleteIso(camera_, iso_);
  if (refused) return true;
  changed_ = true;
  // A camera that is gone leaves its number to another one.
  const bool cameraGone = store_.cameraCount() != before;
  SelectCamera(cameraGone ? store_.FindCamera(profiles::CameraKey(photo_.make, photo_.model)) : camera_);
  return false;
}

void PanelModel::SetDefault() {
  profiles::SetDefault(parameters_);
  Record();
}

bool PanelModel::Undo() {
  const auto state = history_.Undo();
  if (state) parameters_ = *state;
  return state.has_value();
}

bool PanelModel::Redo() {
  const auto state = history_.Redo();
  if (state) parameters_ = *state;
  return state.has_value();
}

}  // namespace mirellon::ui
