// A page of the help: its text with the interface's own words in it, and its sections.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/localization.h"

namespace mirellon::ui {

// A heading with an anchor: <h2><a name="batch">Many photographs</a></h2>.
struct HelpSection {
  int level = 0;  // 1 to 3
  std::string anchor;
  std::string title;  // plain text, UTF-8
};

struct HelpPage {
  std::string html;  // UTF-8
  std::vector<HelpSection> sections;
};

// How a page quotes text `number`: without the key, colon or dots that it ends in, without the mark of a
// menu's key, in one line. UTF-8.
[[nodiscard]] std::string QuotedText(const settings::Localization& localization, int number);

// The page with every {{string12}} replaced by that text; numbers without a text stay as they are.
[[nodiscard]] HelpPage MakeHelpPage(std::string_view page, const settings::Localization& localization);

// Nothing: the file cannot be read, or is no page of ours by its size.
[[nodiscard]] std::optional<HelpPage> ReadHelpPage(const std::filesystem::path& file,
                                                   const settings::Localization& localization);

}  // namespace mirellon::ui
