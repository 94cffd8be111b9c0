#include "imageio/save_format.h"

#include <algorithm>

namespace mirellon::imageio {

namespace {

// The libraries' own limits of a side, in pixels; 0 = none that a picture could reach.
int LongestSide(FREE_IMAGE_FORMAT format) {
  switch (format) {
    case FIF_JPEG:
      return 65500;  // the format itself could count to 65535
    case FIF_PNG:
      return 1000000;
    default:
      return 0;
  }
}

constexpr int kQualityFallback = 95;
constexpr int kQualityMost = 100;  // beyond it the bits of the flags mean other things

}  // namespace

FREE_IMAGE_FORMAT FormatOfName(const std::filesystem::path& name) {
  return FreeImage_GetFIFFromFilename(name.c_str());
}

bool IsWrittenFormat(FREE_IMAGE_FORMAT format) {
  return format != FIF_UNKNOWN && format != FIF_GIF && FreeImage_FIFSupportsWriting(format) != FALSE;
}

bool BitmapTypeOf(const picture::SBxPicBuf& picture, BitmapType& type) {
  const bool grey = picture.components == 1;
  if (picture.bitsPerComponent == 8) {
    type = {FIT_BITMAP, grey ? 8 : 24};
  } else if (picture.bitsPerComponent == 16) {
    type = {grey ? FIT_UINT16 : FIT_RGB16, grey ? 16 : 48};
  } else {
    return false;
  }
  return true;
}

std::string FormatRefusal(FREE_IMAGE_FORMAT format, const picture::SBxPicBuf& picture) {
  const std::string name = FreeImage_GetFormatFromFIF(format);
  BitmapType type{};
  if (!BitmapTypeOf(picture, type) || FreeImage_FIFSupportsExportType(format, type.type) == FALSE ||
      (type.type == FIT_BITMAP && FreeImage_FIFSupportsExportBPP(format, type.bitsPerPixel) == FALSE)) {
    return name + " cannot hold " + (picture.components == 1 ? "grey" : "colour") + " with " +
           std::to_string(picture.bitsPerComponent) + " bits per component";
  }
  const int longest = LongestSide(format);
  if (longest > 0 && std::max(picture.width, picture.height) > longest) {
    return name + " cannot hold a picture with a side of more than " + std::to_string(longest) + " pixels";
  }
  return {};
}

int SaveFlags(FREE_IMAGE_FORMAT format, int jpegQuality, std::optional<int> pngCompression) {
  if (format == FIF_PNG) return pngCompression.value_or(0);
  if (format != FIF_JPEG) return 0;
  return jpegQuality < 1 ? kQualityFallback : std::min(jpegQuality, kQualityMost);
}

}  // namespace mirellon::imageio
