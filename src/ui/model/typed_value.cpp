#include "ui/model/typed_value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace mirellon::ui {

std::optional<double> NumberOfText(std::string_view text, std::string_view ignored) {
  std::string plain;
  for (const char c : text) {
    if (ignored.find(c) == std::string_view::npos) plain += c == ',' ? '.' : c;
  }
  const std::size_t start = plain.size() > 1 && plain[0] == '+' && plain[1] != '-' ? 1 : 0;
  double value = 0.0;
  const char* last = plain.data() + plain.size();
  const auto [end, error] = std::from_chars(plain.data() + start, last, value);
  if (error != std::errc() || end != last || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<double> TypedValue(const profiles::SliderRow& row, std::string_view text) {
  const std::optional<double> value = NumberOfText(text, " ");
  if (!value) return std::nullopt;
  return std::clamp(*value, row.minValue, row.maxValue);
}

}  // namespace mirellon::ui
