#include "cli/info_command.h"

#include "cli/arguments.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/profile_support.h"
#include "cli/report.h"
#include "engine/noise_estimate.h"
#include "profiles/camera_key.h"

namespace mirellon::cli {

namespace {

ExitStatus ChooseProfiles(const InfoArguments& arguments, Shell& shell, InfoReport& report) {
  profiles::NoiseProfileStore store;
  std::vector<std::string> warnings;
  const ExitStatus status =
      OpenProfiles(store, arguments.profiles, profiles::FirstRun::kLeave, shell, warnings);
  if (status != ExitStatus::kDone) return status;
  for (const std::string& warning : warnings) PrintWarning(shell.err, warning);
  const profiles::PhotoIdentity photo = IdentityOf(report.exif);
  report.batchProfile = NamedChoice(store, profiles::SelectProfileForBatch(store, photo));
  store.NormalizeNames();  // as the panel does
  report.profile = NamedChoice(
      store, profiles::SelectProfileForImage(store, photo, report.noise.luminance, report.noise.chrominance));
  return ExitStatus::kDone;
}

ExitStatus Describe(const InfoArguments& arguments, Shell& shell) {
  imageio::Document document;
  imageio::LoadReport loaded;
  const ExitStatus status = LoadInput(arguments.input, document, loaded, shell);
  if (status != ExitStatus::kDone) return status;
  if (!loaded.warning.empty()) PrintWarning(shell.err, About(arguments.input.native(), loaded.warning));

  InfoReport report;
  report.file = arguments.input;
  report.format = loaded.format;
  report.geometry = Geometry::Of(document.source);
  report.exif = document.exif;
  if (!report.exif.make.empty() || !report.exif.model.empty()) {
    report.cameraKey = profiles::CameraKey(report.exif.make, report.exif.model);
  }
  report.noise = engine::MeasureNoise(document.source);
  if (report.noise.failed) return NoMemory(arguments.input, shell);
  const ExitStatus chosen = ChooseProfiles(arguments, shell, report);
  if (chosen != ExitStatus::kDone) return chosen;
  if (shell.engine.control.Aborted()) return Interrupted(arguments.input, shell);
  if (arguments.json) {
    PrintJson(shell.out, report);
  } else {
    PrintText(shell.out, report);
  }
  return ExitStatus::kDone;
}

}  // namespace

ExitStatus RunInfo(std::span<const char* const> args, Shell& shell) {
  InfoArguments arguments;
  const std::optional<ExitStatus> concluded = Conclude(ParseInfoArguments(args, arguments), shell);
  if (concluded) return *concluded;
  return Describe(arguments, shell);
}

}  // namespace mirellon::cli
