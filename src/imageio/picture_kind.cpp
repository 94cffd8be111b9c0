#include "imageio/picture_kind.h"

#include <limits>

#include <FreeImage.h>

namespace mirellon::imageio {

namespace {

constexpr const char* kAlpha = "a colour picture with an alpha channel is not supported";

std::string RefusalOfType(FREE_IMAGE_TYPE type, unsigned bitsPerPixel) {
  switch (type) {
    case FIT_BITMAP:
    case FIT_UINT16:
    case FIT_RGB16:
      return {};
    case FIT_RGBA16:
    case FIT_RGBAF:
      return kAlpha;
    case FIT_FLOAT:
    case FIT_RGBF:
      return "32-bit floating point samples are not supported";
    case FIT_DOUBLE:
    case FIT_COMPLEX:
      return "64-bit floating point samples are not supported";
    default:
      return "signed or " + std::to_string(bitsPerPixel) + "-bit integer samples are not supported";
  }
}

std::string RefusalOfDepth(unsigned bitsPerPixel) {
  switch (bitsPerPixel) {
    case 8:
    case 24:
      return {};
    case 1:
      return "1 bit per pixel is not supported";
    case 16:
      return "packed colour with 16 bits per pixel is not supported";
    case 32:
      return kAlpha;
    default:
      return std::to_string(bitsPerPixel) + " bits per pixel are not supported";
  }
}

}  // namespace

std::string KindRefusal(FIBITMAP* bitmap) {
  const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap);
  const unsigned bitsPerPixel = FreeImage_GetBPP(bitmap);
  const FREE_IMAGE_COLOR_TYPE colours = FreeImage_GetColorType(bitmap);
  if (colours == FIC_CMYK) return "a CMYK picture is not supported";
  if (std::string refusal = RefusalOfType(type, bitsPerPixel); !refusal.empty() || type != FIT_BITMAP) {
    return refusal;
  }
  if (std::string refusal = RefusalOfDepth(bitsPerPixel); !refusal.empty()) return refusal;
  if (colours == FIC_PALETTE) {
    return "a palette picture; only grey and colour with 8 or 16 bits are supported";
  }
  return {};
}

std::string SizeRefusal(std::uint64_t width, std::uint64_t height, unsigned bitsPerPixel) {
  constexpr std::uint64_t kMostBytes = std::numeric_limits<std::int32_t>::max();
  const std::uint64_t rowBytes = (width * bitsPerPixel + 7) / 8;
  if (rowBytes == 0 || height <= kMostBytes / rowBytes) return {};
  return std::to_string(width) + "x" + std::to_string(height) + " pixels are more than a picture can hold";
}

std::string SizeRefusal(FIBITMAP* bitmap) {
  return SizeRefusal(FreeImage_GetWidth(bitmap), FreeImage_GetHeight(bitmap), FreeImage_GetBPP(bitmap));
}

PictureKind KindOf(FIBITMAP* bitmap) {
  const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap);
  const unsigned bitsPerPixel = FreeImage_GetBPP(bitmap);
  const unsigned bits = type == FIT_UINT16 || type == FIT_RGB16 ? 16 : 8;
  return {static_cast<int>(bitsPerPixel / bits), static_cast<int>(bits)};
}

}  // namespace mirellon::imageio
