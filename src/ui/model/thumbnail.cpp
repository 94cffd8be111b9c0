#include "ui/model/thumbnail.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace mirellon::ui {

namespace {

using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr int kComponents = 3;

constexpr int kMostSamples = 8;  // a way, for one pixel: more are not seen, and large photographs are many

struct Range {
  int first;
  int end;
  int step;
};

// The pixels of a side of `length` that pixel `index` of one of `count` stands for.
Range Share(int index, int count, int length) {
  const auto at = [&](int i) { return static_cast<int>(std::int64_t{i} * length / count); };
  const int first = at(index);
  const int end = std::max(at(index + 1), first + 1);
  return {first, end, (end - first + kMostSamples - 1) / kMostSamples};
}

template <typename T>
void Average(const SBxPicBuf& source, Range columns, Range rows, std::uint8_t* to) {
  std::array<std::uint64_t, kComponents> sums{};
  const int components = source.components;
  std::uint64_t count = 0;
  for (int y = rows.first; y < rows.end; y += rows.step) {
    const T* row = Row<T>(source, y);
    for (int x = columns.first; x < columns.end; x += columns.step, ++count) {
      const T* from = row + std::ptrdiff_t{x} * components;
      for (int c = 0; c < components; ++c) sums[static_cast<std::size_t>(c)] += from[c];
    }
  }
  for (int c = 0; c < kComponents; ++c) {
    const std::uint64_t mean = sums[static_cast<std::size_t>(std::min(c, components - 1))] / count;
    to[c] = static_cast<std::uint8_t>(mean >> (8 * (sizeof(T) - 1)));
  }
}

template <typename T>
void Shrink(const SBxPicBuf& source, SBxPicBuf& small) {
  for (int y = 0; y < small.height; ++y) {
    const Range rows = Share(y, small.height, source.height);
    auto* to = Row<std::uint8_t>(small, y);
    for (int x = 0; x < small.width; ++x, to += kComponents) {
      Average<T>(source, Share(x, small.width, source.width), rows, to);
    }
  }
}

}  // namespace

PicBuf MakeThumbnail(const SBxPicBuf& source, int side, Orientation orientation) {
  const bool known = (source.bitsPerComponent == 8 || source.bitsPerComponent == 16) &&
                     (source.components == 1 || source.components == kComponents);
  if (source.samples == nullptr || !known || side < 1) return {};
  const int longer = std::max({source.width, source.height, side});
  const auto shrunk = [&](int length) {
    return static_cast<int>(std::max<std::int64_t>(std::int64_t{length} * side / longer, 1));
  };
  PicBuf small(shrunk(source.width), shrunk(source.height), kComponents, 8);
  if (small.empty()) return small;
  if (source.bitsPerComponent == 8) {
    Shrink<std::uint8_t>(source, small);
  } else {
    Shrink<std::uint16_t>(source, small);
  }
  return orientation == Orientation::kUpright ? std::move(small) : Upright(orientation, small.record());
}

}  // namespace mirellon::ui
