// Where a window was when it was closed.
#pragma once

#include <filesystem>
#include <string>

namespace mirellon::ui {

struct WindowPlace {
  std::string geometry;  // the widgets' own form, base64; empty: unknown
};

// Keys of the section "Window" in the settings file.
inline constexpr const wchar_t* kMainWindowPlace = L"Geometry";
inline constexpr const wchar_t* kHelpWindowPlace = L"Help Geometry";

// True = failed to write.
[[nodiscard]] WindowPlace LoadWindowPlace(const std::filesystem::path& iniFile,
                                          const wchar_t* key = kMainWindowPlace);
[[nodiscard]] bool StoreWindowPlace(const std::filesystem::path& iniFile, const WindowPlace& place,
                                    const wchar_t* key = kMainWindowPlace);

}  // namespace mirellon::ui
