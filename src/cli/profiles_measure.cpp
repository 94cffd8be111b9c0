#include "cli/profiles_measure.h"

#include <string>

#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/profile_support.h"
#include "engine/noise_estimate.h"
#include "profiles/camera_key.h"
#include "profiles/interpolate.h"
#include "profiles/number_text.h"

namespace mirellon::cli {

namespace {

ExitStatus Refuse(const std::filesystem::path& photo, const char* why, Shell& shell) {
  PrintError(shell.err, About(photo.native(), why));
  return ExitStatus::kInput;
}

ExitStatus Measure(const std::filesystem::path& photo, NoiseByCamera& measured, Shell& shell) {
  imageio::Document document;
  imageio::LoadReport report;
  const ExitStatus status = LoadInput(photo, document, report, shell);
  if (status != ExitStatus::kDone) return status;
  if (!report.warning.empty()) PrintWarning(shell.err, About(photo.native(), report.warning));
  const imageio::ExifSummary& exif = document.exif;
  if (exif.make.empty() && exif.model.empty()) return Refuse(photo, "names no camera", shell);
  const std::int32_t iso = profiles::ClampedInteger(exif.iso);
  if (iso <= 0) return Refuse(photo, "tells no ISO speed", shell);
  if (iso < profiles::kLowestAddedIso || iso > profiles::kHighestAddedIso) {
    return Refuse(photo, "its ISO speed cannot be stored", shell);
  }
  const std::wstring camera = profiles::CameraKey(exif.make, exif.model);
  if (!profiles::IsStorableName(camera)) return Refuse(photo, "its camera's name cannot be stored", shell);

  const engine::MeasuredNoise noise = engine::MeasureNoise(document.source);
  if (noise.failed) return NoMemory(photo, shell);
  NoiseSums& sums = measured[{camera, static_cast<std::uint32_t>(iso)}];
  sums.luminance += noise.luminance;
  sums.chrominance += noise.chrominance;
  ++sums.count;
  return ExitStatus::kDone;
}

}  // namespace

ExitStatus MeasurePhotos(const std::vector<std::filesystem::path>& photos, NoiseByCamera& measured,
                         Shell& shell) {
  ExitStatus result = ExitStatus::kDone;
  for (const std::filesystem::path& photo : photos) {
    const ExitStatus status = Measure(photo, measured, shell);
    if (shell.engine.control.Aborted()) {
      measured.clear();
      return Interrupted(photo, shell);
    }
    if (status != ExitStatus::kDone) result = photos.size() == 1 ? status : ExitStatus::kFailed;
  }
  return result;
}

ExitStatus AddMeasured(const NoiseByCamera& measured, const std::vector<engine::DenoiseParameters>& sets,
                       profiles::NoiseProfileStore& store, std::vector<StoredSet>& stored, Shell& shell) {
  ExitStatus result = ExitStatus::kDone;
  for (const auto& [key, sums] : measured) {
    const engine::DenoiseParameters set = profiles::AsStored(
        profiles::InterpolateByNoise(sets, sums.luminance / sums.count, sums.chrominance / sums.count));
    // Under the name that the camera has already, if it has.
    const std::optional<std::uint32_t> camera = FindStoredCamera(store, key.first);
    const std::wstring name = camera ? store.cameras()[*camera].name : key.first;
    if (!profiles::IsStorableName(name)) {
      PrintError(shell.err, NotStorable(name));
      result = ExitStatus::kInput;
      continue;
    }
    if (store.AddOrReplace(name, std::to_wstring(key.second), set)) {
      return NoMemory(store.paths().userFile, shell);
    }
    stored.emplace_back(name, key.second);
  }
  return result;
}

}  // namespace mirellon::cli
