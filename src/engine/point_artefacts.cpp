#include "engine/point_artefacts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "engine/median_rows.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// Planes are worked on in strips of this many columns, whose working rows fit the first-level cache and the
// stack, so that nothing is allocated.
constexpr int kStrip = 1024;

// By value: the compiler does not vectorise loops over std::min and std::max, which take references.
template <typename T>
T Min(T a, T b) {
  return a < b ? a : b;
}

template <typename T>
T Max(T a, T b) {
  return a < b ? b : a;
}

template <typename T>
T Median3(T a, T b, T c) {
  return Max(Min(a, b), Min(Max(a, b), c));
}

// ---- 3 x 3 ----

// Every column of three samples in order; neighbouring windows share them.
template <typename T>
struct SortedColumns {
  std::array<T, kStrip + 2> low;
  std::array<T, kStrip + 2> middle;
  std::array<T, kStrip + 2> high;

  void Load(const T* above, const T* here, const T* below, int count) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(count); ++x) {
      const T less = Min(above[x], here[x]);
      const T more = Max(above[x], here[x]);
      low[x] = Min(less, below[x]);
      middle[x] = Max(less, Min(more, below[x]));
      high[x] = Max(more, below[x]);
    }
  }
};

// The medians of columns [first, first + count), none of which is an outermost one.
template <typename T>
void MedianStrip3x3(SBxPicBuf& destination, const SBxPicBuf& source, int first, int count) {
  SortedColumns<T> sorted;
  for (int y = 1; y < source.height - 1; ++y) {
    sorted.Load(Row<T>(source, y - 1) + first - 1, Row<T>(source, y) + first - 1,
                Row<T>(source, y + 1) + first - 1, count + 2);
    T* medians = Row<T>(destination, y) + first;
    for (std::size_t x = 0; x < static_cast<std::size_t>(count); ++x) {
      const T low = Max(Max(sorted.low[x], sorted.low[x + 1]), sorted.low[x + 2]);
      const T middle = Median3(sorted.middle[x], sorted.middle[x + 1], sorted.middle[x + 2]);
      const T high = Min(Min(sorted.high[x], sorted.high[x + 1]), sorted.high[x + 2]);
      medians[x] = Median3(low, middle, high);
    }
  }
}

template <typename T>
void Median3x3(SBxPicBuf& destination, const SBxPicBuf& source) {
  if (source.height < 3) return;
  for (int x = 1; x < source.width - 1; x += kStrip) {
    MedianStrip3x3<T>(destination, source, x, std::min(kStrip, source.width - 1 - x));
  }
}

// ---- 7 x 7 ----

// Where the window around `position` begins and ends on an axis of that length.
struct Window {
  int first;
  int end;
};

Window WindowAt(int position, int length) {
  return {std::max(0, position - kMedianReach), std::min(length, position + kMedianReach + 1)};
}

// Filters columns [first, first + count) of a plane, row after row.
template <typename T>
class Strip7x7 {
 public:
  Strip7x7(const SBxPicBuf& source, int first, int count) : source_(source), first_(first), count_(count) {
    ranks_.fill(0);
    for (auto& row : rows_) row.fill(std::numeric_limits<Signed>::max());
  }

  void FilterRow(int y, T* medians) {
    const Window window = WindowAt(y, source_.height);
    for (; loaded_ < window.end; ++loaded_) LoadRow(loaded_);
    SetRanks(window.end - window.first);
    std::array<const Signed*, kMedianSide> rows{};
    int rowCount = 0;
    for (int r = window.first; r < window.end; ++r) {
      rows[static_cast<std::size_t>(rowCount++)] = RowBuffer(r).data();
    }
    std::array<Signed, kStrip + kMedianSlack> found;
    MedianRow7x7(rows.data(), rowCount, ranks_.data(), found.data(), count_);
    for (std::size_t x = 0; x < static_cast<std::size_t>(count_); ++x) {
      medians[x] = static_cast<T>(static_cast<T>(found[x]) ^ kTopBit);
    }
  }

 private:
  using Signed = std::make_signed_t<T>;
  using Buffer = std::array<Signed, kStrip + 2 * kMedianReach + kMedianSlack>;
  static constexpr T kTopBit = static_cast<T>(1U << (8 * sizeof(T) - 1));

  // Source row y lies in buffer y % 7; windows only ever move down.
  Buffer& RowBuffer(int y) { return rows_[static_cast<std::size_t>(y % kMedianSide)]; }

  // Columns outside the plane keep the largest value, which is below nothing and so never counts.
  void LoadRow(int y) {
    const int left = std::max(0, first_ - kMedianReach);
    const int right = std::min(source_.width, first_ + count_ + kMedianReach);
    const T* from = Row<T>(source_, y);
    Signed* to = RowBuffer(y).data() + (left - first_ + kMedianReach);
    for (int x = left; x < right; ++x) to[x - left] = static_cast<Signed>(from[x] ^ kTopBit);
  }

  void SetRanks(int rowCount) {
    if (rowCount == rankRows_) return;
    rankRows_ = rowCount;
    for (int x = 0; x < count_; ++x) {
      const Window columns = WindowAt(first_ + x, source_.width);
      const int samples = rowCount * (columns.end - columns.first);
      ranks_[static_cast<std::size_t>(x)] = static_cast<Signed>(samples / 2);
    }
  }

  const SBxPicBuf& source_;
  int first_;
  int count_;
  int loaded_ = 0;    // rows of the source that have been loaded
  int rankRows_ = 0;  // rows of the windows that ranks_ is for
  std::array<Buffer, kMedianSide> rows_;
  std::array<Signed, kStrip + kMedianSlack> ranks_;
};

template <typename T>
void Median7x7(SBxPicBuf& destination, const SBxPicBuf& source) {
  for (int x = 0; x < source.width; x += kStrip) {
    Strip7x7<T> strip(source, x, std::min(kStrip, source.width - x));
    for (int y = 0; y < source.height; ++y) strip.FilterRow(y, Row<T>(destination, y) + x);
  }
}

template <typename T>
void Filter(SBxPicBuf& destination, const SBxPicBuf& source, int mode) {
  if (mode == 1) Median3x3<T>(destination, source);
  if (mode == 2) Median7x7<T>(destination, source);
}

}  // namespace

void RemovePointArtefacts(SBxPicBuf& destination, const SBxPicBuf& source, int mode) {
  const bool planes = source.samples != nullptr && destination.samples != nullptr && source.components == 1 &&
                      destination.components == 1 && source.width == destination.width &&
                      source.height == destination.height &&
                      source.bitsPerComponent == destination.bitsPerComponent;
  if (!planes) return;
  if (source.bitsPerComponent == 8) Filter<std::uint8_t>(destination, source, mode);
  if (source.bitsPerComponent == 16) Filter<std::uint16_t>(destination, source, mode);
}

}  // namespace mirellon::engine
