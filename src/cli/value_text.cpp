#include "cli/value_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "cli/diagnostics.h"

namespace mirellon::cli {

namespace {

std::string NotBetween(std::string_view text, std::string_view low, std::string_view high) {
  return std::string(text) + " is not between " + std::string(low) + " and " + std::string(high);
}

std::string NotANumber(std::string_view text, const char* kind, std::string_view low, std::string_view high) {
  return Quoted(text) + " is not a " + kind + " between " + std::string(low) + " and " + std::string(high);
}

}  // namespace

std::optional<double> ParseDecimal(std::string_view text) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value, std::chars_format::general);
  if (error != std::errc() || stopped != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::int64_t> ParseWhole(std::string_view text) {
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (stopped != end || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    return text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                               : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

std::string ReadDecimal(std::string_view text, double low, double high, double& value) {
  const std::optional<double> read = ParseDecimal(text);
  if (!read) return NotANumber(text, "number", NumberText(low), NumberText(high));
  if (*read < low || *read > high) return NotBetween(text, NumberText(low), NumberText(high));
  value = *read;
  return {};
}

std::string ReadWhole(std::string_view text, std::int64_t low, std::int64_t high, std::int64_t& value) {
  const std::optional<std::int64_t> read = ParseWhole(text);
  if (!read) return NotANumber(text, "whole number", std::to_string(low), std::to_string(high));
  if (*read < low || *read > high) return NotBetween(text, std::to_string(low), std::to_string(high));
  value = *read;
  return {};
}

std::string ReadChoice(std::string_view text, std::span<const Choice> choices, int& value) {
  for (const Choice& choice : choices) {
    if (text != choice.word) continue;
    value = choice.value;
    return {};
  }
  return Quoted(text) + " is not one of " + JoinWords(choices, ", ");
}

std::string JoinWords(std::span<const Choice> choices, std::string_view between) {
  std::string words;
  for (const Choice& choice : choices) {
    if (!words.empty()) words += between;
    words += choice.word;
  }
  return words;
}

const char* WordFor(std::span<const Choice> choices, int value) {
  for (const Choice& choice : choices) {
    if (choice.value == value) return choice.word;
  }
  return "";
}

std::string NumberText(double value) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string();
}

}  // namespace mirellon::cli
