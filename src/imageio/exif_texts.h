// How the values of EXIF tags are shown.
#pragma once

#include <cstdint>
#include <string>

namespace mirellon::imageio {

// A rational as the tag holds it. Shown numbers are the 32 bits taken as signed.
struct ExifRational {
  std::uint32_t numerator;
  std::uint32_t denominator;
};

// The forms that the program's users know, which name the denominator: 1/1 "f/1", 8/1 "f 1", 1/4 "f 4/1",
// 28/10 "f 10".
[[nodiscard]] std::wstring FNumberText(ExifRational value);

// Reduced by 2, 3, 5 and 7; with a numerator still above 10, taken as 1/r where the inverse lies within 0.01
// of a whole number r: 10/1250 "1/125 sec.", 30/1 "30 sec.", 33/10000 "33/10000 sec.".
[[nodiscard]] std::wstring ExposureText(ExifRational value);

[[nodiscard]] std::wstring IsoText(std::uint16_t value);

// Empty unless both are known (not zero).
[[nodiscard]] std::wstring DimensionsText(std::uint16_t width, std::uint16_t height);

}  // namespace mirellon::imageio
