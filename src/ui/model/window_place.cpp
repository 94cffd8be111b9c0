#include "ui/model/window_place.h"

#include "base/ini_file.h"
#include "base/paths.h"
#include "base/text.h"
#include "settings/ini_update.h"

namespace mirellon::ui {

namespace {

constexpr const wchar_t* kSection = L"Window";

}  // namespace

WindowPlace LoadWindowPlace(const std::filesystem::path& iniFile, const wchar_t* key) {
  base::IniFile ini;
  if (ini.Read(iniFile) != base::IniFile::ReadResult::kRead) return {};
  return {base::Utf8FromWide(ini.Find(kSection, key).value_or(std::wstring()))};
}

bool StoreWindowPlace(const std::filesystem::path& iniFile, const WindowPlace& place, const wchar_t* key) {
  if (base::EnsureFolder(iniFile.parent_path())) return true;
  return settings::UpdateIni(iniFile, kSection, key, base::WideFromUtf8(place.geometry)).failed;
}

}  // namespace mirellon::ui
