#include "cli/profile_support.h"

#include <algorithm>
#include <system_error>

#include "base/text.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "profiles/profile_lock.h"

namespace mirellon::cli {

using profiles::CameraProfile;
using profiles::NoiseProfileStore;

profiles::ProfilePaths ChosenProfilePaths(const std::filesystem::path& file, const Shell& shell) {
  profiles::ProfilePaths paths = profiles::StandardProfilePaths(shell.applicationData, shell.resourceFolders);
  if (!file.empty()) paths.userFile = file;
  return paths;
}

bool RefusesProfilesFolder(const std::filesystem::path& file, Shell& shell) {
  std::error_code ignored;
  // The user's own folder is made when it is not there; a misspelt one is not.
  if (!file.has_parent_path() || std::filesystem::exists(file, ignored)) return false;
  if (std::filesystem::is_directory(file.parent_path(), ignored)) return false;
  PrintError(shell.err, "--profiles: " + About(file.native(), "its folder does not exist"));
  return true;
}

ExitStatus OpenProfiles(NoiseProfileStore& store, const std::filesystem::path& file,
                        profiles::FirstRun firstRun, Shell& shell, std::vector<std::string>& warnings) {
  if (RefusesProfilesFolder(file, shell)) return ExitStatus::kUsage;
  store = NoiseProfileStore(ChosenProfilePaths(file, shell));
  std::error_code ignored;
  const bool missing = !file.empty() && !std::filesystem::exists(file, ignored);
  if (!file.empty()) firstRun = profiles::FirstRun::kLeave;
  profiles::ProfileLock lock;
  const profiles::ProfilePaths& paths = store.paths();
  // A first run must not save its one set over those that another program stores at this moment.
  if (firstRun == profiles::FirstRun::kSave && !std::filesystem::exists(paths.userFile, ignored) &&
      !std::filesystem::exists(paths.defaultFile, ignored) &&
      lock.Acquire(paths.userFile, kLongestProfilesWait, &shell.engine.control)) {
    firstRun = profiles::FirstRun::kLeave;
    warnings.push_back(About(paths.userFile.native(), lock.cause()));
  }
  if (store.Load(firstRun)) return NoMemory(store.causeFile(), shell);
  if (missing) {
    const bool shipped = store.source() == profiles::ProfileSource::kDefaultFile;
    warnings.push_back(About(
        file.native(), std::string("no such file; the ") +
                           (shipped ? "sets shipped with the program stand in" : "built-in set stands in")));
  }
  if (!store.cause().empty()) warnings.push_back(About(store.causeFile().native(), store.cause()));
  return ExitStatus::kDone;
}

std::optional<std::uint32_t> FindStoredCamera(const NoiseProfileStore& store, const std::wstring& name) {
  const std::vector<CameraProfile>& cameras = store.cameras();
  const auto exact = std::find_if(cameras.begin(), cameras.end(),
                                  [&name](const CameraProfile& camera) { return camera.name == name; });
  if (exact != cameras.end()) return static_cast<std::uint32_t>(exact - cameras.begin());
  const std::uint32_t found = store.FindCamera(name);
  return found == 0 ? std::nullopt : std::optional(found);
}

std::optional<std::uint32_t> FindStoredEntry(const NoiseProfileStore& store, std::uint32_t camera,
                                             std::uint32_t iso) {
  const std::vector<std::uint32_t>& speeds = store.cameras()[camera].isoValues;
  const auto found = std::find(speeds.begin(), speeds.end(), iso);
  if (found == speeds.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - speeds.begin());
}

std::string NoSuchCamera(const NoiseProfileStore& store, const std::wstring& name) {
  return About(base::Utf8FromWide(name), "no such camera in ") + Quoted(store.paths().userFile.native()) +
         "; '" + kProgramName + " profiles list' names them";
}

std::string NoSuchSpeed(const NoiseProfileStore& store, std::uint32_t camera, std::uint32_t iso) {
  const CameraProfile& profile = store.cameras()[camera];
  std::string text = Quoted(base::Utf8FromWide(profile.name)) + " has no set for ISO " + std::to_string(iso);
  for (std::size_t i = 0; i < profile.isoValues.size(); ++i) {
    text += (i == 0 ? ", only for " : ", ") + std::to_string(profile.isoValues[i]);
  }
  return text;
}

std::string NotStorable(const std::wstring& name) {
  return Quoted(base::Utf8FromWide(name)) +
         " cannot be stored; names hold no control characters and no ']', and do not begin with '<<<'";
}

profiles::PhotoIdentity IdentityOf(const imageio::ExifSummary& exif) {
  return {exif.make, exif.model, exif.iso};
}

ProfileReport NamedChoice(const NoiseProfileStore& store, const profiles::ProfileChoice& choice) {
  if (choice.parameters == nullptr) return {};
  const CameraProfile& camera = store.cameras()[choice.camera];
  return {camera.name, camera.isoValues[choice.entry], profiles::RuleName(choice.rule)};
}

}  // namespace mirellon::cli
