// Which file formats are written, and what they can hold.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <FreeImage.h>

#include "picture/pic_buf_api.h"

namespace mirellon::imageio {

// By the name alone; FIF_UNKNOWN when it tells none.
[[nodiscard]] FREE_IMAGE_FORMAT FormatOfName(const std::filesystem::path& name);

// Known, writable, and not GIF.
[[nodiscard]] bool IsWrittenFormat(FREE_IMAGE_FORMAT format);

// How a picture's samples lie in a bitmap. False: a depth that no bitmap of ours has.
struct BitmapType {
  FREE_IMAGE_TYPE type;
  int bitsPerPixel;
};
[[nodiscard]] bool BitmapTypeOf(const picture::SBxPicBuf& picture, BitmapType& type);

// Why the format cannot hold the picture; empty when it can.
[[nodiscard]] std::string FormatRefusal(FREE_IMAGE_FORMAT format, const picture::SBxPicBuf& picture);

// The library's save flags: for JPEG the quality (95 for one below 1, at most 100), for PNG the compression
// where one is asked for, else none.
[[nodiscard]] int SaveFlags(FREE_IMAGE_FORMAT format, int jpegQuality, std::optional<int> pngCompression);

}  // namespace mirellon::imageio
