#include "engine/median_rows.h"

#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/median_rows.cpp"
#include <hwy/foreach_target.h>
// After foreach_target, which includes this file once more for every target.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Minus the number of the 7 samples from `samples` on that lie below `limit`, in each lane.
template <class D, class T = hn::TFromD<D>>
hn::Vec<D> MinusBelow(D d, const T* samples, hn::Vec<D> limit) {
  const auto below = [&](int i) { return hn::VecFromMask(d, hn::Lt(hn::LoadU(d, samples + i), limit)); };
  return hn::Add(hn::Add(hn::Add(below(0), below(1)), hn::Add(below(2), below(3))),
                 hn::Add(hn::Add(below(4), below(5)), below(6)));
}

// The median is the largest value that has at most `rank` samples below it. It is found bit by bit from the
// top, for as many pixels at once as a vector has lanes; no sample is ever moved.
template <typename T>
void MedianRow(const T* const* rows, int rowCount, const T* ranks, T* medians, int count) {
  const hn::CappedTag<T, kMedianSlack / sizeof(T)> d;
  const int lanes = static_cast<int>(hn::Lanes(d));
  for (int x = 0; x < count; x += lanes) {
    const auto minusRank = hn::Neg(hn::LoadU(d, ranks + x));
    auto median = hn::Set(d, hwy::LowestValue<T>());
    for (unsigned bit = 1U << (8 * sizeof(T) - 1); bit != 0; bit >>= 1U) {
      const auto candidate = hn::Add(median, hn::Set(d, static_cast<T>(bit)));
      auto minusBelow = hn::Zero(d);
      for (int r = 0; r < rowCount; ++r) {
        minusBelow = hn::Add(minusBelow, MinusBelow(d, rows[r] + x, candidate));
      }
      median = hn::IfThenElse(hn::Lt(minusBelow, minusRank), median, candidate);
    }
    hn::StoreU(median, d, medians + x);
  }
}

void MedianRow8(const std::int8_t* const* rows, int rowCount, const std::int8_t* ranks, std::int8_t* medians,
                int count) {
  MedianRow(rows, rowCount, ranks, medians, count);
}

void MedianRow16(const std::int16_t* const* rows, int rowCount, const std::int16_t* ranks,
                 std::int16_t* medians, int count) {
  MedianRow(rows, rowCount, ranks, medians, count);
}

}  // namespace mirellon::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace mirellon::engine {

HWY_EXPORT(MedianRow8);
HWY_EXPORT(MedianRow16);

void MedianRow7x7(const std::int8_t* const* rows, int rowCount, const std::int8_t* ranks,
                  std::int8_t* medians, int count) {
  HWY_DYNAMIC_DISPATCH(MedianRow8)(rows, rowCount, ranks, medians, count);
}

void MedianRow7x7(const std::int16_t* const* rows, int rowCount, const std::int16_t* ranks,
                  std::int16_t* medians, int count) {
  HWY_DYNAMIC_DISPATCH(MedianRow16)(rows, rowCount, ranks, medians, count);
}

}  // namespace mirellon::engine

#endif  // HWY_ONCE
