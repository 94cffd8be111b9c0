// Values of options: read strictly, refused with the range that is accepted.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace mirellon::cli {

// A finite decimal number that takes the whole text ("0.5", "-1", "2e1"); no sign "+", no blanks, no
// hexadecimal, no "nan" or "inf", and a point whatever the locale.
[[nodiscard]] std::optional<double> ParseDecimal(std::string_view text);

// Decimal digits only, with a leading "-" at most. Numbers beyond 64 bits are held to them, so that they are
// refused as out of range, not as malformed.
[[nodiscard]] std::optional<std::int64_t> ParseWhole(std::string_view text);

// One word of a list, and what it stands for.
struct Choice {
  const char* word;
  int value;
};

// Each reads `text` into `value`. Empty = read; else why not, without the option's name ("60 is not between 0
// and 50"), and the value is as it was.
[[nodiscard]] std::string ReadDecimal(std::string_view text, double low, double high, double& value);
[[nodiscard]] std::string ReadWhole(std::string_view text, std::int64_t low, std::int64_t high,
                                    std::int64_t& value);
[[nodiscard]] std::string ReadChoice(std::string_view text, std::span<const Choice> choices, int& value);

// The words of a list, as messages and help name them: "none, common, strong" or "none|common|strong".
[[nodiscard]] std::string JoinWords(std::span<const Choice> choices, std::string_view between);
// The word for a value, "" when there is none.
[[nodiscard]] const char* WordFor(std::span<const Choice> choices, int value);

// The shortest text of a number of a range: "50", "0.5", "-2".
[[nodiscard]] std::string NumberText(double value);

}  // namespace mirellon::cli
