#include "ui/model/panel_model.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "profiles/camera_key.h"
#include "profiles/interpolate.h"
#include "profiles/number_text.h"
#include "profiles/profile_file.h"
#include "profiles/profile_lock.h"
#include "profiles/slider_math.h"

namespace mirellon::ui {

namespace {

// The window waits for it.
constexpr std::chrono::milliseconds kLongestWait{2000};

}  // namespace

bool PanelModel::Load() {
  const profiles::ProfilePaths& paths = store_.paths();
  std::error_code ignored;
  profiles::FirstRun firstRun = profiles::FirstRun::kSave;
  profiles::ProfileLock lock;
  // A first run must not save its one set over those that another program stores at this moment.
  if (!std::filesystem::exists(paths.userFile, ignored) &&
      !std::filesystem::exists(paths.defaultFile, ignored) && lock.Acquire(paths.userFile, kLongestWait)) {
    firstRun = profiles::FirstRun::kLeave;
  }
  const bool failed = store_.Load(firstRun);
  store_.NormalizeNames();
  edits_.Clear();
  camera_ = 0;
  iso_ = 0;
  CopyEntry();
  history_.Start(State());
  return failed;
}

bool PanelModel::FailSave(const std::filesystem::path& file, const std::string& cause) {
  saveCauseFile_ = file;
  saveCause_ = cause;
  return true;
}

bool PanelModel::Save() {
  saveCause_.clear();
  const std::filesystem::path& file = store_.paths().userFile;
  profiles::ProfileLock lock;
  if (lock.Acquire(file, kLongestWait)) return FailSave(file, lock.cause());
  profiles::NoiseProfileStore present(store_.paths());
  const bool unread = present.Load(profiles::FirstRun::kLeave);
  present.NormalizeNames();
  if (unread || edits_.Replay(present)) return FailSave(file, "not enough memory");
  if (present.Save()) return FailSave(present.causeFile(), present.cause());
  edits_.Clear();
  Adopt(std::move(present));
  return false;
}

void PanelModel::Adopt(profiles::NoiseProfileStore store) {
  StoredPlace place;
  if (store_.Entry(camera_, iso_) != nullptr) {
    const profiles::CameraProfile& chosen = store_.cameras()[camera_];
    place = FindStored(store, chosen.name, chosen.isoValues[iso_]);
  }
  store_ = std::move(store);
  camera_ = place.camera;
  iso_ = place.entry;
}

void PanelModel::ShowPhotograph(const Photograph& photograph) {
  // What cannot be saved is kept in memory rather than read away.
  (void)(edits_.empty() ? Load() : Save());
  photo_ = {photograph.exif.make, photograph.exif.model, photograph.exif.iso};
  noise_ = photograph.noise;
  Choose(profiles::SelectProfileForImage(store_, photo_, noise_.luminance, noise_.chrominance));
  history_.Start(State());
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
  edits_.Add(camera, iso, parameters_);
  SelectCamera(store_.FindCamera(camera));
  return false;
}

bool PanelModel::CanMeasure() const {
  const std::int32_t iso = profiles::ClampedInteger(photo_.iso);
  return !(photo_.make.empty() && photo_.model.empty()) && iso >= profiles::kLowestAddedIso &&
         iso <= profiles::kHighestAddedIso &&
         profiles::IsStorableName(profiles::CameraKey(photo_.make, photo_.model));
}

bool PanelModel::KeepMeasured() {
  if (!CanMeasure()) return true;
  const engine::DenoiseParameters before = parameters_;
  parameters_ = profiles::AsStored(
      profiles::InterpolateByNoise(profiles::CatchAllSets(store_), noise_.luminance, noise_.chrominance));
  // Under the name that the camera has already, if it has.
  const std::wstring key = profiles::CameraKey(photo_.make, photo_.model);
  const std::uint32_t camera = store_.FindCamera(key);
  const std::wstring name = camera == 0 ? key : store_.cameras()[camera].name;
  const bool failed = Keep(name, std::to_wstring(profiles::ClampedInteger(photo_.iso)));
  if (failed) parameters_ = before;
  return failed;
}

bool PanelModel::Delete(Scope scope) {
  if (!CanDelete() || store_.Entry(camera_, iso_) == nullptr) return true;
  const std::uint32_t before = store_.cameraCount();
  ProfileEdits edits = edits_;
  if (scope == Scope::kCamera) {
    edits.DeleteCamera(store_, camera_);
    if (store_.DeleteCamera(camera_)) return true;
  } else {
    edits.DeleteIso(store_, camera_, iso_);
    if (store_.DeleteIso(camera_, iso_)) return true;
  }
  edits_ = std::move(edits);
  // A camera that is gone leaves its number to another one.
  const bool cameraGone = store_.cameraCount() != before;
  SelectCamera(cameraGone ? store_.FindCamera(profiles::CameraKey(photo_.make, photo_.model)) : camera_);
  return false;
}

void PanelModel::SetDefault() {
  profiles::SetDefault(parameters_);
  Record();
}

PanelState PanelModel::State() const {
  const bool chosen = camera_ < store_.cameraCount();
  return {parameters_, chosen ? store_.cameras()[camera_].name : std::wstring()};
}

bool PanelModel::Return(const std::optional<PanelState>& state) {
  if (!state) return false;
  // The lists follow, unless the entry was deleted meanwhile.
  const std::wstring speed = std::to_wstring(state->parameters.iso);
  const std::uint32_t camera = store_.FindCamera(state->camera);
  const std::uint32_t iso = store_.FindIso(camera, speed);
  const engine::DenoiseParameters* entry = store_.Entry(camera, iso);
  if (entry != nullptr && entry->iso == state->parameters.iso &&
      store_.cameras()[camera].name == state->camera) {
    camera_ = camera;
    iso_ = iso;
  }
  parameters_ = state->parameters;
  return true;
}

bool PanelModel::Undo() {
  return Return(history_.Undo());
}

bool PanelModel::Redo() {
  return Return(history_.Redo());
}

}  // namespace mirellon::ui
