#include "base/paths.h"

#include <cstdlib>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

namespace mirellon::base {

namespace {

constexpr const char* kProgramFolder = "MirellonGPU20";
constexpr const char* kSettingsName = "MirellonGPU20.txt";

std::filesystem::path FromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

}  // namespace

std::filesystem::path ApplicationDataFolder() {
  if (std::filesystem::path own = FromEnvironment("MIRELLON_CONFIG_HOME"); !own.empty()) return own;
  if (std::filesystem::path xdg = FromEnvironment("XDG_CONFIG_HOME"); xdg.is_absolute()) return xdg;
  if (std::filesystem::path home = FromEnvironment("HOME"); !home.empty()) return home / ".config";
  // Job runners may start without it.
  if (const passwd* user = getpwuid(getuid());
      user != nullptr && user->pw_dir != nullptr && user->pw_dir[0] == '/')
    return std::filesystem::path(user->pw_dir) / ".config";
  return ".";
}

std::filesystem::path UserFolder(const std::filesystem::path& applicationData) {
  return applicationData / kProgramFolder;
}

std::filesystem::path SettingsFile(const std::filesystem::path& applicationData) {
  return UserFolder(applicationData) / kSettingsName;
}

std::vector<std::filesystem::path> ResourceFolders() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error || !program.has_parent_path()) return {};
  const std::filesystem::path own = program.parent_path();
  const std::filesystem::path prefix = own.parent_path();
  std::vector<std::filesystem::path> folders = {own, prefix / "share" / "mirellon"};
  // Programs of a build tree lie in <source>/build/<preset>/bin.
  if (std::filesystem::exists(prefix / "CMakeCache.txt", error)) {
    folders.push_back(prefix.parent_path().parent_path() / "resources");
  }
  return folders;
}

std::filesystem::path ResourceFile(const std::filesystem::path& name,
                                   const std::vector<std::filesystem::path>& folders) {
  for (const std::filesystem::path& folder : folders) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(folder / name, ignored)) return folder / name;
  }
  return folders.empty() ? name : folders.front() / name;
}

bool EnsureFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return !std::filesystem::is_directory(folder, error);
}

}  // namespace mirellon::base
