// Which decoded bitmaps become pictures.
#pragma once

#include <cstdint>
#include <string>

struct FIBITMAP;

namespace mirellon::imageio {

// Why a bitmap is of no kind that a picture can hold; empty for 8- and 16-bit grey and colour. A bitmap read
// without its pixels may pass here and be refused once they are there.
[[nodiscard]] std::string KindRefusal(FIBITMAP* bitmap);

// Why a picture of that size is too large; empty when it is not.
[[nodiscard]] std::string SizeRefusal(std::uint64_t width, std::uint64_t height, unsigned bitsPerPixel);
[[nodiscard]] std::string SizeRefusal(FIBITMAP* bitmap);

// Components and bits of an accepted bitmap: bits per pixel divided by 16 for the 16-bit kinds, else by 8.
struct PictureKind {
  int components;
  int bits;
};
[[nodiscard]] PictureKind KindOf(FIBITMAP* bitmap);

}  // namespace mirellon::imageio
