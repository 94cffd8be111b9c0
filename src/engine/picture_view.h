// Parts of pictures that are worked on where they lie.
#pragma once

#include <cstddef>

#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// A record that borrows the storage of `picture`: the rectangle, which lies inside it. It must be neither
// re-created nor released.
[[nodiscard]] inline picture::SBxPicBuf ViewOf(const picture::SBxPicBuf& picture,
                                               const picture::CBxRect<int>& part) {
  const std::ptrdiff_t pixelBytes = std::ptrdiff_t{picture.components} * (picture.bitsPerComponent / 8);
  picture::SBxPicBuf view = picture;
  view.samples += std::ptrdiff_t{part.top} * picture.rowStride + part.left * pixelBytes;
  view.byteSize = 0;
  view.width = part.right - part.left;
  view.height = part.bottom - part.top;
  return view;
}

}  // namespace mirellon::engine
