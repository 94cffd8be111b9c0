#include "ui/model/orientation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace mirellon::ui {

namespace {

using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr int kComponents = 3;
// Turned by squares, so that rows and columns both stay in the cache.
constexpr int kSquare = 64;

bool RunsLeft(Orientation orientation) {
  return orientation == Orientation::kMirrored || orientation == Orientation::kHalfTurned ||
         orientation == Orientation::kTransversed || orientation == Orientation::kQuarterRight;
}

bool RunsUp(Orientation orientation) {
  return orientation == Orientation::kHalfTurned || orientation == Orientation::kUpsideDown ||
         orientation == Orientation::kQuarterLeft || orientation == Orientation::kTransversed;
}

// How far it is in the stored picture, in bytes, from one upright pixel to the next one right and below.
struct Walk {
  const std::uint8_t* start;
  std::ptrdiff_t right;
  std::ptrdiff_t down;
};

Walk WalkOf(Orientation orientation, const SBxPicBuf& stored) {
  std::ptrdiff_t column = kComponents;
  std::ptrdiff_t row = stored.rowStride;
  const std::uint8_t* start = stored.samples;
  if (RunsLeft(orientation)) {
    start += (stored.width - 1) * column;
    column = -column;
  }
  if (RunsUp(orientation)) {
    start += (stored.height - 1) * row;
    row = -row;
  }
  if (SwapsSides(orientation)) std::swap(column, row);
  return {start, column, row};
}

void CopySquare(const Walk& walk, const PictureRect& square, SBxPicBuf& upright) {
  for (int y = square.top; y < square.bottom; ++y) {
    const std::uint8_t* from = walk.start + y * walk.down + square.left * walk.right;
    std::uint8_t* to = Row<std::uint8_t>(upright, y) + std::ptrdiff_t{square.left} * kComponents;
    for (int x = square.left; x < square.right; ++x, from += walk.right) {
      for (int c = 0; c < kComponents; ++c) *to++ = from[c];
    }
  }
}

}  // namespace

Orientation OrientationOf(int exifValue) {
  return exifValue >= 1 && exifValue <= 8 ? static_cast<Orientation>(exifValue) : Orientation::kUpright;
}

bool SwapsSides(Orientation orientation) {
  return orientation >= Orientation::kTransposed;
}

PictureRect StoredRect(Orientation orientation, int width, int height, const PictureRect& upright) {
  PictureRect rect = upright;
  if (SwapsSides(orientation)) rect = {rect.top, rect.left, rect.bottom, rect.right};
  // Counted from the other ends.
  if (RunsLeft(orientation)) rect = {width - rect.right, rect.top, width - rect.left, rect.bottom};
  if (RunsUp(orientation)) rect = {rect.left, height - rect.bottom, rect.right, height - rect.top};
  return rect;
}

PicBuf Upright(Orientation orientation, const SBxPicBuf& stored) {
  const bool swap = SwapsSides(orientation);
  PicBuf upright(swap ? stored.height : stored.width, swap ? stored.width : stored.height, kComponents, 8);
  if (upright.empty()) return upright;
  const Walk walk = WalkOf(orientation, stored);
  for (int top = 0; top < upright->height; top += kSquare) {
    for (int left = 0; left < upright->width; left += kSquare) {
      CopySquare(
          walk,
          {left, top, std::min(left + kSquare, upright->width), std::min(top + kSquare, upright->height)},
          upright);
    }
  }
  return upright;
}

}  // namespace mirellon::ui
