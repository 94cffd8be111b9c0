#include "base/paths.h"

#include <cstdlib>
#include <system_error>

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
  return ".";
}

std::filesystem::path UserFolder(const std::filesystem::path& applicationData) {
  return applicationData / kProgramFolder;
}

std::filesystem::path SettingsFile(const std::filesystem::path& applicationData) {
  return UserFolder(applicationData) / kSettingsName;
}

bool EnsureFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return !std::filesystem::is_directory(folder, error);
}

}  // namespace mirellon::base
