#include "imageio/exif_texts.h"

#include <cmath>

namespace mirellon::imageio {

namespace {

std::wstring Shown(std::uint32_t value) {
  return std::to_wstring(static_cast<std::int32_t>(value));
}

// True when the division changed something: zero stays zero for ever.
bool DivideBoth(ExifRational& value, std::uint32_t divisor) {
  if (value.numerator % divisor != 0 || value.denominator % divisor != 0) return false;
  if (value.numerator == 0 && value.denominator == 0) return false;
  value.numerator /= divisor;
  value.denominator /= divisor;
  return true;
}

ExifRational Reduced(ExifRational value) {
  bool changed = true;
  while (changed) {
    changed = false;
    for (const std::uint32_t divisor : {2U, 3U, 5U, 7U}) changed |= DivideBoth(value, divisor);
  }
  return value;
}

}  // namespace

std::wstring FNumberText(ExifRational value) {
  const auto [n, d] = value;
  if (d == 1) return n == 1 ? L"f/" + Shown(d) : L"f 1";
  return n == 1 ? L"f " + Shown(d) + L"/" + Shown(n) : L"f " + Shown(d);
}

std::wstring ExposureText(ExifRational value) {
  auto [n, d] = Reduced(value);
  if (n > 10) {
    const double inverse = static_cast<double>(d) / n;
    const double whole = std::floor(inverse + 0.5);
    if (std::fabs(inverse - whole) < 0.01) {
      d = static_cast<std::uint32_t>(whole);
      n = 1;
    }
  }
  return d != 1 ? Shown(n) + L"/" + Shown(d) + L" sec." : Shown(n) + L" sec.";
}

std::wstring IsoText(std::uint16_t value) {
  return std::to_wstring(value);
}

std::wstring DimensionsText(std::uint16_t width, std::uint16_t height) {
  if (width == 0 || height == 0) return {};
  return std::to_wstring(width) + L"x" + std::to_wstring(height);
}

}  // namespace mirellon::imageio
