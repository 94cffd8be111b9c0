#include "settings/app_settings.h"

#include <string>

#include "base/ini_file.h"
#include "base/paths.h"

namespace mirellon::settings {

namespace {

constexpr const wchar_t* kSection = L"General";
constexpr const wchar_t* kJpegKey = L"jpeg";
constexpr int kJpegDefault = 85;

}  // namespace

int ReadJpegQuality(const std::filesystem::path& applicationData) {
  (void)base::EnsureFolder(base::UserFolder(applicationData));
  base::IniFile file;
  // A file that is missing or cannot be read holds no keys, so the default comes out.
  (void)file.Read(base::SettingsFile(applicationData));
  return file.GetInteger(kSection, kJpegKey, kJpegDefault);
}

bool WriteJpegQuality(const std::filesystem::path& applicationData, int quality) {
  if (base::EnsureFolder(base::UserFolder(applicationData))) return true;
  const std::filesystem::path path = base::SettingsFile(applicationData);
  base::IniFile file;
  // What cannot be understood is somebody's work all the same: leave it.
  if (file.Read(path) == base::IniFile::ReadResult::kFailed) return true;
  const std::wstring text = std::to_wstring(static_cast<unsigned>(quality));
  if (file.Find(kSection, kJpegKey) == text) return false;
  return file.Set(kSection, kJpegKey, text) || file.Write(path);
}

}  // namespace mirellon::settings
