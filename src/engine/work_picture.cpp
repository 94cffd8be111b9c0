#include "engine/work_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "engine/mirror_border.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// Where the planes of a work picture lie in their storage.
struct Layout {
  int workWidth;
  int workHeight;
  std::ptrdiff_t stride;
  std::size_t bytes;
  std::ptrdiff_t origin;  // of work coordinate (0, 0)
};

Layout LayoutOf(int width, int height, int border) {
  constexpr std::ptrdiff_t kAlign = 64;
  const int workWidth = width + 2 * border;
  const int workHeight = height + 2 * border;
  const std::ptrdiff_t wanted = kFrameColumnsLeft + workWidth + kFrameColumnsRight;
  const std::ptrdiff_t stride = (wanted + kAlign - 1) / kAlign * kAlign;
  const std::ptrdiff_t rows = workHeight + 2 * std::ptrdiff_t{kFrameRows};
  return {workWidth, workHeight, stride, static_cast<std::size_t>(rows * stride),
          kFrameRows * stride + kFrameColumnsLeft};
}

// The plane at work coordinate (0, 0) as a record that borrows its storage.
SBxPicBuf View(std::uint8_t* storage, const Layout& layout) {
  return {storage + layout.origin,
          0,
          static_cast<std::int32_t>(layout.stride),
          layout.workWidth,
          layout.workHeight,
          1,
          8};
}

}  // namespace

int BorderOf(int width, int height, int halfWindow) {
  const int stated = std::min(2 * (std::min(width, height) / 2) - 1, 71) / 2 + 3;
  return std::max(stated, halfWindow + 2);
}

bool WorkPicture::Build(const SBxPicBuf& source, const SBxPicBuf& guide, int halfWindow) {
  const int border = BorderOf(source.width, source.height, halfWindow);
  const Layout layout = LayoutOf(source.width, source.height, border);
  const bool deep = source.bitsPerComponent == 16;
  try {
    high_.assign(layout.bytes, 0);
    low_.assign(deep ? layout.bytes : 0, 0);
  } catch (const std::bad_alloc&) {
    return true;
  }
  SBxPicBuf high = View(high_.data(), layout);
  for (int y = 0; y < source.height; ++y) {
    std::memcpy(Row<std::uint8_t>(high, y + border) + border, Row<std::uint8_t>(guide, y),
                static_cast<std::size_t>(source.width));
  }
  MirrorBorder8(high, border);
  if (deep) {
    SBxPicBuf low = View(low_.data(), layout);
    for (int y = 0; y < source.height; ++y) {
      const std::uint16_t* from = Row<std::uint16_t>(source, y);
      std::transform(from, from + source.width, Row<std::uint8_t>(low, y + border) + border,
                     [](std::uint16_t sample) { return static_cast<std::uint8_t>(sample & 0xFFU); });
    }
    MirrorBorder8(low, border);
  }
  planes_ = {high_.data() + layout.origin,
             deep ? low_.data() + layout.origin : nullptr,
             layout.stride,
             border,
             source.width,
             source.height};
  return false;
}

}  // namespace mirellon::engine
