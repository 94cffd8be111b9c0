#include "engine/card_checks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "engine/picture_view.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

struct Range {
  int least = 65535;
  int greatest = 0;
};

template <typename T>
Range RangeOf(const SBxPicBuf& plane) {
  Range range;
  for (int y = 0; y < plane.height; ++y) {
    const T* row = Row<T>(plane, y);
    const auto [least, greatest] = std::minmax_element(row, row + plane.width);
    range = {std::min<int>(range.least, *least), std::max<int>(range.greatest, *greatest)};
  }
  return range;
}

Range RangeOf(const SBxPicBuf& plane) {
  return plane.bitsPerComponent == 8 ? RangeOf<std::uint8_t>(plane) : RangeOf<std::uint16_t>(plane);
}

// ---- Samples ----

// The compared parts, which begin at 2 x 2 blocks, and how far the filter sees around them.
constexpr int kParts = 3;
constexpr int kPartSide = 48;
constexpr int kReach = 24;

CBxRect<int> WithReach(const CBxRect<int>& part, const SBxPicBuf& plane) {
  return {std::max(part.left - kReach, 0), std::max(part.top - kReach, 0),
          std::min(part.right + kReach, plane.width), std::min(part.bottom + kReach, plane.height)};
}

// Where part i along a side begins: at the start, in the middle, at the end.
int PartStart(int side, int i) {
  return std::max(side - kPartSide, 0) * i / (kParts - 1) / 2 * 2;
}

template <typename T>
double SumOfDifferences(const SBxPicBuf& a, const SBxPicBuf& b) {
  double sum = 0.0;
  for (int y = 0; y < a.height; ++y) {
    const T* left = Row<T>(a, y);
    const T* right = Row<T>(b, y);
    for (std::ptrdiff_t x = 0; x < a.width; ++x) sum += std::abs(left[x] - right[x]);
  }
  return sum;
}

// Of two planes of one geometry, in 8-bit steps.
double MeanDifference(const SBxPicBuf& a, const SBxPicBuf& b) {
  const double sum = a.bitsPerComponent == 8 ? SumOfDifferences<std::uint8_t>(a, b)
                                             : SumOfDifferences<std::uint16_t>(a, b) / 256.0;
  return sum / a.width / a.height;
}

// Adds one part's share. True = not known.
bool ComparePart(EngineContext& context, const SBxPicBuf& source, const SBxPicBuf& result,
                 const CBxRect<int>& part, const PlaneSettings& settings, SampleComparison& comparison) {
  const CBxRect<int> seen = WithReach(part, source);
  PicBuf plane(seen.right - seen.left, seen.bottom - seen.top, 1, source.bitsPerComponent);
  if (plane.empty()) return true;
  CBxPicBufAPI::Copy(plane, ViewOf(source, seen));
  if (FilterPaddedPlane(context, plane, settings) != 0 || context.control.Aborted()) return true;
  const SBxPicBuf expected = ViewOf(
      plane, {part.left - seen.left, part.top - seen.top, part.right - seen.left, part.bottom - seen.top});
  comparison.difference += MeanDifference(ViewOf(result, part), expected) / kParts;
  comparison.effect += MeanDifference(ViewOf(source, part), expected) / kParts;
  return false;
}

}  // namespace

bool PlausibleAverage(const SBxPicBuf& source, const SBxPicBuf& result) {
  const Range from = RangeOf(source);
  const Range to = RangeOf(result);
  constexpr int kRounding = 2;
  if (to.greatest == 0 && from.greatest > kRounding) return false;
  return to.least >= from.least - kRounding && to.greatest <= from.greatest + kRounding;
}

SampleComparison CompareSamples(EngineContext& context, const SBxPicBuf& source, const SBxPicBuf& result,
                                const PlaneSettings& settings) {
  PlaneSettings onProcessor = settings;
  onProcessor.useGpu = false;
  onProcessor.progressWindow = nullptr;
  SampleComparison comparison;
  for (int i = 0; i < kParts; ++i) {
    const int left = PartStart(source.width, i);
    const int top = PartStart(source.height, i);
    const CBxRect<int> part = {left, top, std::min(left + kPartSide, source.width),
                               std::min(top + kPartSide, source.height)};
    if (ComparePart(context, source, result, part, onProcessor, comparison)) return {};
  }
  comparison.known = true;
  return comparison;
}

}  // namespace mirellon::engine
