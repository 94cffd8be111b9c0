// The keys of the settings file: one row each.
#pragma once

#include <array>
#include <cstddef>

namespace mirellon::settings {

enum class Setting {
  kHwAccel,
  kGpuCpuFusion,
  kAdvancedDenoise,
  kCrashedLastTime,
  kJpeg,
  kLatestFolder,
  kShowManualTunning,
  kQuality,
  kColourScheme,
  kColourManagement,
};

// The row drives reading, default, range, writing, and the key's line in docs/settings.md.
struct SettingRow {
  Setting setting;
  const wchar_t* key;      // in section "General"
  const wchar_t* initial;  // what a missing key stands for
  int low;  // numbers read are held to this range; low > high: a number as it stands, or a text
  int high;
  const char* values;  // for the reader of the documentation
  const char* meaning;
};

inline constexpr const wchar_t* kSettingsSection = L"General";

inline constexpr std::array<SettingRow, 10> kSettings{{
    {Setting::kHwAccel, L"HW Accel", L"0", 1, 0, "0, 1",
     "1: use the graphics card, where there is a usable one"},
    {Setting::kGpuCpuFusion, L"GPUCPUFusion", L"0", 1, 0, "0, 1",
     "with the graphics card in use, 1: the processor takes tiles beside it, 0: the card alone"},
    {Setting::kAdvancedDenoise, L"AdvancedDenoise", L"0", 1, 0, "0, 1",
     "without effect; the options always store 0"},
    {Setting::kCrashedLastTime, L"Crashed Last Time", L"0", 1, 0, "0, 1",
     "1 while the desktop program runs, so that the next start can tell that a run never came to its end"},
    {Setting::kJpeg, L"jpeg", L"85", 1, 0, "1 to 100",
     "quality of JPEG results in percent; below 1 stands for 95, above 100 for 100"},
    {Setting::kLatestFolder, L"Latest Folder", L"", 1, 0, "a folder",
     "the folder taken last for batch denoising, chosen or dropped"},
    {Setting::kShowManualTunning, L"ShowManualTunning", L"1", 1, 0, "0, 1",
     "1: the panel shows the controls for manual tuning"},
    {Setting::kQuality, L"Quality", L"2", 1, 3, "1, 2, 3",
     "the quality chosen in the panel: low, medium, superior; batch runs use it too"},
    {Setting::kColourScheme, L"Colour Scheme", L"2", 1, 3, "1, 2, 3",
     "colours of the desktop program: light, dark, dark with more contrast"},
    {Setting::kColourManagement, L"Colour Management", L"1", 0, 1, "0, 1",
     "1: photographs with a colour profile are shown in the colours of the screen"},
}};

[[nodiscard]] constexpr const SettingRow& RowOf(Setting setting) {
  return kSettings[static_cast<std::size_t>(setting)];
}

}  // namespace mirellon::settings
