#include "settings/app_settings.h"

#include <algorithm>

#include "base/ini_file.h"
#include "base/paths.h"
#include "base/text.h"
#include "settings/ini_update.h"

namespace mirellon::settings {

namespace {

constexpr bool RowsStandInOrder() {
  for (std::size_t i = 0; i < kSettings.size(); ++i) {
    if (static_cast<std::size_t>(kSettings[i].setting) != i) return false;
  }
  return true;
}
static_assert(RowsStandInOrder());

// Blanks or quotes at the ends would not come back without a pair of quotes around them.
std::wstring Protected(const std::wstring& text) {
  const std::wstring outer = L" \t\"'";
  const bool plain = text.empty() || (outer.find(text.front()) == std::wstring::npos &&
                                      outer.find(text.back()) == std::wstring::npos);
  return plain ? text : L'"' + text + L'"';
}

}  // namespace

std::wstring AppSettings::GetText(Setting setting) const {
  if (reading_ == Reading::kMakesFolder) (void)base::EnsureFolder(base::UserFolder(folder_));
  base::IniFile file;
  // A file that is missing or cannot be read holds no keys, so the initial value comes out.
  (void)file.Read(base::SettingsFile(folder_));
  const SettingRow& row = RowOf(setting);
  return base::CutText(file.Find(kSettingsSection, row.key).value_or(row.initial), base::kLongTextCapacity);
}

int AppSettings::GetNumber(Setting setting) const {
  const SettingRow& row = RowOf(setting);
  const int number = base::LeadingInteger(GetText(setting));
  return row.low <= row.high ? std::clamp(number, row.low, row.high) : number;
}

bool AppSettings::SetText(Setting setting, const std::wstring& text) {
  cause_.clear();
  keptCopy_.clear();
  const std::filesystem::path file = base::SettingsFile(folder_);
  if (base::EnsureFolder(file.parent_path())) {
    cause_ = "the folder cannot be created";
    return true;
  }
  IniUpdate update = UpdateIni(file, kSettingsSection, RowOf(setting).key, Protected(text));
  cause_ = std::move(update.cause);
  keptCopy_ = std::move(update.kept);
  return update.failed;
}

bool AppSettings::SetNumber(Setting setting, int number) {
  return SetText(setting, std::to_wstring(number));
}

std::filesystem::path AppSettings::GetLatestFolder() const {
  return {base::Utf8FromWide(GetText(Setting::kLatestFolder))};
}

bool AppSettings::SetLatestFolder(const std::filesystem::path& folder) {
  const std::string& name = folder.native();
  const std::wstring text = base::WideFromUtf8(name);
  const bool holds = base::IsValidUtf8(name) && text.size() < base::kLongTextCapacity &&
                     text.find_first_of(std::wstring(L"\r\n\0", 3)) == std::wstring::npos;
  if (!holds) {
    cause_ = "the folder's name cannot be stored";
    return true;
  }
  return SetText(Setting::kLatestFolder, text);
}

int ReadJpegQuality(const std::filesystem::path& applicationData) {
  return AppSettings(applicationData).GetNumber(Setting::kJpeg);
}

bool WriteJpegQuality(const std::filesystem::path& applicationData, int quality) {
  AppSettings settings(applicationData);
  return settings.SetText(Setting::kJpeg, std::to_wstring(static_cast<unsigned>(quality)));
}

int EffectiveHwAccel(int stored, const CardCheck& cardUsable) {
  return stored != 0 && cardUsable && cardUsable() ? stored : 0;
}

LoadedSettings LoadSettings(AppSettings& settings, const CardCheck& cardUsable) {
  LoadedSettings loaded;
  loaded.hwAccel = EffectiveHwAccel(settings.GetNumber(Setting::kHwAccel), cardUsable);
  loaded.fusion = settings.GetNumber(Setting::kGpuCpuFusion);
  loaded.advancedDenoise = settings.GetNumber(Setting::kAdvancedDenoise);
  loaded.crashedLastTime = settings.GetNumber(Setting::kCrashedLastTime) != 0;
  loaded.jpegQuality = settings.GetNumber(Setting::kJpeg);
  loaded.quality = static_cast<std::uint32_t>(settings.GetNumber(Setting::kQuality));
  loaded.colourScheme = settings.GetNumber(Setting::kColourScheme);
  if (settings.SetNumber(Setting::kCrashedLastTime, 1)) {
    loaded.warning = "the settings cannot be stored: " + settings.cause();
  }
  return loaded;
}

bool MarkOrderlyEnd(AppSettings& settings) {
  return settings.SetNumber(Setting::kCrashedLastTime, 0);
}

}  // namespace mirellon::settings
