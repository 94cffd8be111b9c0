#include <cstddef>
#include <cstdint>
#include <cstring>

#include <FreeImage.h>

#include "imageio/save_format.h"
#include "imageio/save_image.h"
#include "picture/pic_buf.h"

namespace mirellon::imageio {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// Blue-first samples into the library's red-first deep colour.
void CopyDeepColour(const SBxPicBuf& picture, int y, BYTE* line) {
  const auto* from = Row<std::uint16_t>(picture, y);
  auto* to = reinterpret_cast<FIRGB16*>(line);
  for (int x = 0; x < picture.width; ++x, from += 3) to[x] = {from[2], from[1], from[0]};
}

}  // namespace

FIBITMAP* CreateBitmap(const SBxPicBuf& picture) {
  BitmapType type{};
  if (!BitmapTypeOf(picture, type)) return nullptr;
  FIBITMAP* bitmap = FreeImage_AllocateT(type.type, picture.width, picture.height, type.bitsPerPixel);
  if (bitmap == nullptr || (picture.components != 1 && picture.components != 3)) return bitmap;
  const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * picture.components *
                               (static_cast<std::size_t>(picture.bitsPerComponent) / 8);
  for (int y = 0; y < picture.height; ++y) {
    BYTE* line = FreeImage_GetScanLine(bitmap, picture.height - 1 - y);
    if (type.type == FIT_RGB16) {
      CopyDeepColour(picture, y, line);
    } else {
      std::memcpy(line, Row<unsigned char>(picture, y), rowBytes);
    }
  }
  return bitmap;
}

}  // namespace mirellon::imageio
