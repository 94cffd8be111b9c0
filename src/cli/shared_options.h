// Options that several commands have.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cli/arguments.h"
#include "cli/parser.h"
#include "cli/value_text.h"

namespace mirellon::cli {

// " (1 to 100; default 85)"
[[nodiscard]] std::string RangeText(std::string_view low, std::string_view high, std::string_view fallback);

// A reader of one word of a list into an integer or enumeration.
template <typename T>
[[nodiscard]] Parser::Reader ChoiceReader(std::span<const Choice> choices, T& target) {
  return [choices, &target](std::string_view text) {
    int value = 0;
    std::string refusal = ReadChoice(text, choices, value);
    if (refusal.empty()) target = static_cast<T>(value);
    return refusal;
  };
}

// Each adds the option of its name; the value lands in the place given, which must outlive the parser.
// `fallback` is what the help names as the default.
void AddQualityOption(Parser& parser, std::string_view fallback, Parser::Reader reader);
void AddBackendOption(Parser& parser, Backend& backend);
void AddThreadsOption(Parser& parser, std::optional<std::uint32_t>& threads);
void AddJpegQualityOption(Parser& parser, std::optional<int>& quality);
void AddPngCompressionOption(Parser& parser, std::optional<int>& compression);
void AddProgressOption(Parser& parser, ProgressMode& progress);

}  // namespace mirellon::cli
