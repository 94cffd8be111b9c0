// What title, zoom list and status bar say.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace mirellon::ui {

inline constexpr const wchar_t* kProgramName = L"Mirellon";

// "Mirellon", or "Mirellon - %s" of the photograph's path.
[[nodiscard]] std::wstring WindowTitle(const std::filesystem::path& photograph);

// "%.1f %s" of the percentage and "%".
[[nodiscard]] std::string ZoomText(double zoom);
// The zoom that a text like "66.7 %", "66.7" or "66,7%" asks for, held to 1 to 3200 %; nothing for any other
// text.
[[nodiscard]] std::optional<double> ZoomOfText(std::string_view text);

}  // namespace mirellon::ui
