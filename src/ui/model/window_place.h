// Where the window was when it was closed.
#pragma once

#include <filesystem>
#include <string>

namespace mirellon::ui {

struct WindowPlace {
  std::string geometry;  // the widgets' own form, base64; empty: unknown
};

// The section "Window" of the settings file. True = failed to write.
[[nodiscard]] WindowPlace LoadWindowPlace(const std::filesystem::path& iniFile);
[[nodiscard]] bool StoreWindowPlace(const std::filesystem::path& iniFile, const WindowPlace& place);

}  // namespace mirellon::ui
