#include "cli/profiles_measure.h"

#include <map>
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

// The noise of the photographs of one camera and speed.
struct Measurements {
  double luminance = 0.0;  // sums
  double chrominance = 0.0;
  int count = 0;
};

// By camera key and ISO speed.
using Measured = std::map<StoredSet, Measurements>;

ExitStatus Refuse(const std::filesystem::path& photo, const char* why, Shell& shell) {
  PrintError(shell.err, About(photo.native(), why));
  return ExitStatus::kInput;
}

ExitStatus Measure(const std::filesystem::path& photo, Measured& measured, Shell& shell) {
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
  Measurements& sums = measured[{camera, static_cast<std::uint32_t>(iso)}];
  sums.luminance += noise.luminance;
  sums.chrominance += noise.chrominance;
  ++sums.count;
  return ExitStatus::kDone;
}

}  // namespace

ExitStatus MeasureProfiles(const std::vector<std::filesystem::path>& photos,
                           const std::vector<engine::DenoiseParameters>& sets,
                           profiles::NoiseProfileStore& store, std::vector<StoredSet>& stored, Shell& shell) {
  Measured measured;
  ExitStatus result = ExitStatus::kDone;
  for (const std::filesystem::path& photo : photos) {
    const ExitStatus status = Measure(photo, measured, shell);
    if (shell.engine.control.Aborted()) return Interrupted(photo, shell);
    if (status != ExitStatus::kDone) result = photos.size() == 1 ? status : ExitStatus::kFailed;
  }
  for (const auto& [key, sums] : measured) {
    const engine::DenoiseParameters set =
        profiles::InterpolateByNoise(sets, sums.luminance / sums.count, sums.chrominance / sums.count);
    // Under the name that the camera has already, if it has.
    const std::optional<std::uint32_t> camera = FindStoredCamera(store, key.first);
    const std::wstring name = camera ? store.cameras()[*camera].name : key.first;
    if (store.AddOrReplace(name, std::to_wstring(key.second), set)) return NoMemory(photos.front(), shell);
    stored.emplace_back(name, key.second);
  }
  return result;
}

}  // namespace mirellon::cli
