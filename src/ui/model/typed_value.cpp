#include "ui/model/typed_value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace mirellon::ui {

std::optional<double> TypedValue(const profiles::SliderRow& row, std::string_view text) {
  std::string plain;
  for (const char c : text) {
    if (c != ' ') plain += c == ',' ? '.' : c;
  }
  double value = 0.0;
  const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (error != std::errc() || end != plain.data() + plain.size() || !std::isfinite(value))
    return std::nullopt;
  return std::clamp(value, row.minValue, row.maxValue);
}

}  // namespace mirellon::ui
