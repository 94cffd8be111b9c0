// The loops of similarity_band.h for one instruction set; included once per target.
//
// Blocks are pairs of columns in pairs of rows. A vector of N 16-bit lanes holds N blocks, one of 2N bytes
// their pixels in one row. Weighted sums pair the sample at p + d with the one at p - d, and the weight of
// the one with that of the other, so that one multiply-add instruction does both directions; the accumulators
// stay in the order in which the interleaving leaves them.

#if defined(MIRELLON_SIMILARITY_BAND_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef MIRELLON_SIMILARITY_BAND_INL_H_
#undef MIRELLON_SIMILARITY_BAND_INL_H_
#else
#define MIRELLON_SIMILARITY_BAND_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/similarity_band.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// ---------------------------------------------------------------------------------------------------------------
// Where a displacement reads, in half-size (block) coordinates of the work picture.

struct Reach {
  int firstRow;       // distances are wanted from this row …
  int lastRow;        // … to this one
  int firstColumn;    // and from this column on,
  int columns;        // so many of them
  int forwardColumn;  // where block 0's own distance lies among them
  int backwardRow;    // how many rows below a block's own distance that at p - d lies
  int backwardColumn;
};

inline Reach ReachOf(const SimilarityBand& band, int dy, int dx) {
  const WorkPlanes& planes = *band.planes;
  const int top = planes.border + 2 * band.firstBlockRow;
  const int forward = planes.border >> 1;
  const int backward = (planes.border - dx) >> 1;
  const int blocks = planes.width / 2;
  Reach reach{};
  reach.firstRow = top >> 1;
  reach.backwardRow = ((top - dy) >> 1) - reach.firstRow;
  reach.lastRow = reach.firstRow + reach.backwardRow + band.blockRows - 1;
  reach.firstColumn = std::min(forward, backward);
  reach.columns = std::max(forward, backward) - reach.firstColumn + blocks;
  reach.forwardColumn = forward - reach.firstColumn;
  reach.backwardColumn = backward - reach.firstColumn;
  return reach;
}

// ---------------------------------------------------------------------------------------------------------------
// Row steps: each has a vector form that may run up to a vector past `count`, and a plain one for the scalar
// target, whose vectors have one lane and cannot be interleaved.

#if HWY_TARGET == HWY_SCALAR

inline void BlockSums(const std::uint8_t* HWY_RESTRICT row, const std::uint8_t* HWY_RESTRICT partner,
                      std::ptrdiff_t stride, std::uint16_t* HWY_RESTRICT sums, int count) {
  const auto difference = [](std::uint8_t a, std::uint8_t b) { return a > b ? a - b : b - a; };
  for (std::ptrdiff_t j = 0; j < count; ++j) {
    sums[j] = static_cast<std::uint16_t>(difference(row[2 * j], partner[2 * j]) +
                                         difference(row[2 * j + 1], partner[2 * j + 1]) +
                                         difference(row[stride + 2 * j], partner[stride + 2 * j]) +
                                         difference(row[stride + 2 * j + 1], partner[stride + 2 * j + 1]));
  }
}

inline void TripleSums(const std::uint16_t* HWY_RESTRICT sums, std::uint16_t* HWY_RESTRICT triples,
                       int count) {
  for (std::ptrdiff_t j = 0; j < count; ++j) {
    triples[j] = static_cast<std::uint16_t>(sums[j] + sums[j + 1] + sums[j + 2]);
  }
}

inline void BoxSums(const std::uint16_t* HWY_RESTRICT a, const std::uint16_t* HWY_RESTRICT b,
                    const std::uint16_t* HWY_RESTRICT c, int largest, std::uint16_t* HWY_RESTRICT boxes,
                    int count) {
  for (std::ptrdiff_t j = 0; j < count; ++j) {
    boxes[j] = static_cast<std::uint16_t>(std::min(a[j] + b[j] + c[j], largest));
  }
}

inline void LookUp(const std::uint16_t* HWY_RESTRICT table, int /*zero*/, std::uint16_t* HWY_RESTRICT row,
                   int count) {
  for (std::ptrdiff_t j = 0; j < count; ++j) row[j] = table[row[j]];
}

inline void AddWeights(const std::uint16_t* HWY_RESTRICT forward, const std::uint16_t* HWY_RESTRICT backward,
                       std::uint32_t* HWY_RESTRICT sum, int blocks) {
  for (std::ptrdiff_t b = 0; b < blocks; ++b) sum[b] += static_cast<std::uint32_t>(forward[b] + backward[b]);
}

inline void AddValues(const std::uint16_t* HWY_RESTRICT forward, const std::uint16_t* HWY_RESTRICT backward,
                      const std::uint8_t* HWY_RESTRICT plus, const std::uint8_t* HWY_RESTRICT minus,
                      std::int32_t* HWY_RESTRICT sum, int blocks) {
  for (std::ptrdiff_t b = 0; b < blocks; ++b) {
    sum[2 * b] += plus[2 * b] * forward[b] + minus[2 * b] * backward[b];
    sum[2 * b + 1] += plus[2 * b + 1] * forward[b] + minus[2 * b + 1] * backward[b];
  }
}

// Both pixel rows of one row of blocks.
inline void AddBlockRow(const SimilarityBand& band, int blockRow, const std::uint16_t* forward,
                        const std::uint16_t* backward, std::ptrdiff_t plus, std::ptrdiff_t minus) {
  const WorkPlanes& planes = *band.planes;
  const int blocks = planes.width / 2;
  const auto row = static_cast<std::size_t>(blockRow);
  AddWeights(forward, backward, band.weightSum + row * band.blockStride, blocks);
  for (std::size_t r = 0; r < 2; ++r) {
    const std::size_t sums = (2 * row + r) * 2 * band.blockStride;
    const std::ptrdiff_t down = static_cast<std::ptrdiff_t>(r) * planes.stride;
    AddValues(forward, backward, planes.high + plus + down, planes.high + minus + down, band.highSum + sums,
              blocks);
    if (planes.low == nullptr) continue;
    AddValues(forward, backward, planes.low + plus + down, planes.low + minus + down, band.lowSum + sums,
              blocks);
  }
}

// Where the sums of pixel x and of its block stand in an accumulator row.
inline std::size_t PixelPlace(std::size_t x) {
  return x;
}
inline std::size_t BlockPlace(std::size_t block) {
  return block;
}

#else  // HWY_TARGET != HWY_SCALAR

using D8 = hn::ScalableTag<std::uint8_t>;
using D16 = hn::ScalableTag<std::uint16_t>;
using D16i = hn::ScalableTag<std::int16_t>;
using D32 = hn::ScalableTag<std::uint32_t>;
using D32i = hn::ScalableTag<std::int32_t>;
using V16i = hn::Vec<D16i>;

// Sums of the absolute differences of neighbouring bytes in one row.
template <class V8>
HWY_INLINE hn::Vec<D16> PairDifferences(V8 a, V8 b) {
  const D16 d16;
  const auto difference = hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
  const auto pairs = hn::BitCast(d16, difference);
  return hn::Add(hn::And(pairs, hn::Set(d16, 0xFF)), hn::ShiftRight<8>(pairs));
}

inline void BlockSums(const std::uint8_t* HWY_RESTRICT row, const std::uint8_t* HWY_RESTRICT partner,
                      std::ptrdiff_t stride, std::uint16_t* HWY_RESTRICT sums, int count) {
  const D8 d8;
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto upper = PairDifferences(hn::LoadU(d8, row + 2 * j), hn::LoadU(d8, partner + 2 * j));
    const auto lower =
        PairDifferences(hn::LoadU(d8, row + stride + 2 * j), hn::LoadU(d8, partner + stride + 2 * j));
    hn::StoreU(hn::Add(upper, lower), d16, sums + j);
  }
}

inline void TripleSums(const std::uint16_t* HWY_RESTRICT sums, std::uint16_t* HWY_RESTRICT triples,
                       int count) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto outer = hn::Add(hn::LoadU(d16, sums + j), hn::LoadU(d16, sums + j + 2));
    hn::StoreU(hn::Add(outer, hn::LoadU(d16, sums + j + 1)), d16, triples + j);
  }
}

inline void BoxSums(const std::uint16_t* HWY_RESTRICT a, const std::uint16_t* HWY_RESTRICT b,
                    const std::uint16_t* HWY_RESTRICT c, int largest, std::uint16_t* HWY_RESTRICT boxes,
                    int count) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto limit = hn::Set(d16, static_cast<std::uint16_t>(largest));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto box = hn::Add(hn::Add(hn::LoadU(d16, a + j), hn::LoadU(d16, b + j)), hn::LoadU(d16, c + j));
    hn::StoreU(hn::Min(box, limit), d16, boxes + j);
  }
}

// Replaces distances by weights. Where a whole vector lies beyond the table nothing needs looking up.
inline void LookUp(const std::uint16_t* HWY_RESTRICT table, int zero, std::uint16_t* HWY_RESTRICT row,
                   int count) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto limit = hn::Set(d16, static_cast<std::uint16_t>(zero));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto distance = hn::LoadU(d16, row + j);
    if (hn::AllTrue(d16, hn::Eq(distance, limit))) {
      hn::StoreU(hn::Zero(d16), d16, row + j);
      continue;
    }
    for (std::ptrdiff_t k = j; k < j + lanes; ++k) row[k] = table[row[k]];
  }
}

// One multiply-add of neighbouring 16-bit lanes.
HWY_INLINE hn::Vec<D32i> PairProducts(V16i a, V16i b) {
  const D32i d32;
  auto odd = hn::Zero(d32);
  const auto even = hn::ReorderWidenMulAccumulate(d32, a, b, hn::Zero(d32), odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

// Weights of N blocks as (forward, backward) pairs, one pair for each of their 2N pixels of a row.
struct PixelWeights {
  V16i quarter[4];
};

HWY_INLINE PixelWeights SpreadWeights(hn::Vec<D16> forward, hn::Vec<D16> backward) {
  const D16 d16;
  const D16i d16i;
  const D32 d32;
  const auto lower = hn::BitCast(d32, hn::InterleaveLower(d16, forward, backward));
  const auto upper = hn::BitCast(d32, hn::InterleaveUpper(d16, forward, backward));
  return {{hn::BitCast(d16i, hn::InterleaveLower(d32, lower, lower)),
           hn::BitCast(d16i, hn::InterleaveUpper(d32, lower, lower)),
           hn::BitCast(d16i, hn::InterleaveLower(d32, upper, upper)),
           hn::BitCast(d16i, hn::InterleaveUpper(d32, upper, upper))}};
}

HWY_INLINE void AddQuarter(V16i samples, V16i weights, std::int32_t* HWY_RESTRICT sum) {
  const D32i d32;
  hn::StoreU(hn::Add(hn::LoadU(d32, sum), PairProducts(samples, weights)), d32, sum);
}

// 2N pixels of one row: their samples at p + d and p - d times their weights.
HWY_INLINE void AddPixels(const PixelWeights& weights, const std::uint8_t* HWY_RESTRICT plus,
                          const std::uint8_t* HWY_RESTRICT minus, std::int32_t* HWY_RESTRICT sum) {
  const D8 d8;
  const D16i d16i;
  const auto zero = hn::Zero(d8);
  const auto p = hn::LoadU(d8, plus);
  const auto m = hn::LoadU(d8, minus);
  const auto lower = hn::InterleaveLower(d8, p, m);
  const auto upper = hn::InterleaveUpper(d8, p, m);
  const std::size_t step = hn::Lanes(D32i());
  AddQuarter(hn::BitCast(d16i, hn::InterleaveLower(d8, lower, zero)), weights.quarter[0], sum);
  AddQuarter(hn::BitCast(d16i, hn::InterleaveUpper(d8, lower, zero)), weights.quarter[1], sum + step);
  AddQuarter(hn::BitCast(d16i, hn::InterleaveLower(d8, upper, zero)), weights.quarter[2], sum + 2 * step);
  AddQuarter(hn::BitCast(d16i, hn::InterleaveUpper(d8, upper, zero)), weights.quarter[3], sum + 3 * step);
}

HWY_INLINE void AddWeightSums(hn::Vec<D16> forward, hn::Vec<D16> backward, std::uint32_t* HWY_RESTRICT sum) {
  const D16 d16;
  const D32 d32;
  const auto both = hn::Add(forward, backward);  // at most 20000
  const auto lower = hn::BitCast(d32, hn::InterleaveLower(d16, both, hn::Zero(d16)));
  const auto upper = hn::BitCast(d32, hn::InterleaveUpper(d16, both, hn::Zero(d16)));
  const std::size_t step = hn::Lanes(d32);
  hn::StoreU(hn::Add(hn::LoadU(d32, sum), lower), d32, sum);
  hn::StoreU(hn::Add(hn::LoadU(d32, sum + step), upper), d32, sum + step);
}

// Both pixel rows of one row of blocks. `plus` and `minus` are the places of the first sample at p + d and p
// - d.
template <bool kLow>
HWY_INLINE void AddBlockRowOf(const SimilarityBand& band, int blockRow,
                              const std::uint16_t* HWY_RESTRICT forward,
                              const std::uint16_t* HWY_RESTRICT backward, std::ptrdiff_t plus,
                              std::ptrdiff_t minus) {
  const D16 d16;
  const WorkPlanes& planes = *band.planes;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const std::ptrdiff_t blocks = planes.width / 2;
  const auto row = static_cast<std::size_t>(blockRow);
  const std::size_t sums = 2 * row * 2 * band.blockStride;
  const std::size_t nextRow = 2 * band.blockStride;
  for (std::ptrdiff_t b = 0; b < blocks; b += lanes) {
    const auto f = hn::LoadU(d16, forward + b);
    const auto w = hn::LoadU(d16, backward + b);
    if (hn::AllTrue(d16, hn::Eq(hn::Or(f, w), hn::Zero(d16)))) continue;
    AddWeightSums(f, w, band.weightSum + row * band.blockStride + b);
    const PixelWeights weights = SpreadWeights(f, w);
    const std::size_t at = sums + static_cast<std::size_t>(2 * b);
    const std::uint8_t* high = planes.high + 2 * b;
    AddPixels(weights, high + plus, high + minus, band.highSum + at);
    AddPixels(weights, high + plus + planes.stride, high + minus + planes.stride,
              band.highSum + at + nextRow);
    if constexpr (kLow) {
      const std::uint8_t* low = planes.low + 2 * b;
      AddPixels(weights, low + plus, low + minus, band.lowSum + at);
      AddPixels(weights, low + plus + planes.stride, low + minus + planes.stride, band.lowSum + at + nextRow);
    }
  }
}

inline void AddBlockRow(const SimilarityBand& band, int blockRow, const std::uint16_t* forward,
                        const std::uint16_t* backward, std::ptrdiff_t plus, std::ptrdiff_t minus) {
  if (band.planes->low == nullptr) {
    AddBlockRowOf<false>(band, blockRow, forward, backward, plus, minus);
  } else {
    AddBlockRowOf<true>(band, blockRow, forward, backward, plus, minus);
  }
}

// Where the sums of pixel x and of a block stand in an accumulator row. Interleaving works within 16 bytes: a
// vector of 2N pixels is kept as four runs, the first holding pixels 0 to 3 of every 16, and so on; a vector
// of N blocks as two, the first holding blocks 0 to 3 of every 8.
inline std::size_t PixelPlace(std::size_t x) {
  const std::size_t vector = hn::Lanes(D8());
  const std::size_t inVector = x % vector;
  return x - inVector + (inVector % 16 / 4) * (vector / 4) + inVector / 16 * 4 + inVector % 4;
}

inline std::size_t BlockPlace(std::size_t block) {
  const std::size_t vector = hn::Lanes(D16());
  const std::size_t inVector = block % vector;
  return block - inVector + (inVector % 8 / 4) * (vector / 2) + inVector / 8 * 4 + inVector % 4;
}

#endif  // HWY_TARGET == HWY_SCALAR

// ---------------------------------------------------------------------------------------------------------------
// The steps, common to all targets.

// The box sums of all places that the displacement reads, held to the tables' length: they are the patch
// distances. A box sum covers 3 x 3 blocks, so 6 x 6 pixels.
inline void Distances(const SimilarityBand& band, const Reach& reach, int dy, int dx) {
  const WorkPlanes& planes = *band.planes;
  const int largest = band.tables->storedEntries() - 1;
  const std::size_t stride = band.blockStride;
  std::uint16_t* blockSums = band.rowSums + 3 * stride;
  const std::ptrdiff_t partner = dy * planes.stride + dx;
  const std::ptrdiff_t firstSumRow = reach.firstRow - 1;
  const std::ptrdiff_t firstSumColumn = reach.firstColumn - 1;
  for (std::ptrdiff_t row = firstSumRow; row <= reach.lastRow + 1; ++row) {
    const std::uint8_t* start = planes.high + 2 * row * planes.stride + 2 * firstSumColumn;
    BlockSums(start, start + partner, planes.stride, blockSums, reach.columns + 2);
    const auto slot = static_cast<std::size_t>((row - firstSumRow) % 3);
    TripleSums(blockSums, band.rowSums + slot * stride, reach.columns);
    if (row < firstSumRow + 2) continue;
    std::uint16_t* boxes = band.distances + static_cast<std::size_t>(row - firstSumRow - 2) * stride;
    BoxSums(band.rowSums, band.rowSums + stride, band.rowSums + 2 * stride, largest, boxes, reach.columns);
  }
}

// The two weights of every block of a row: the table is that of the sample at the block's top left.
inline void WeightsByIntensity(const SimilarityBand& band, const std::uint8_t* samples,
                               const std::uint16_t* HWY_RESTRICT forward,
                               const std::uint16_t* HWY_RESTRICT backward,
                               std::uint16_t* HWY_RESTRICT forwardWeights,
                               std::uint16_t* HWY_RESTRICT backwardWeights) {
  const std::uint16_t* tables = band.tables->Table(0);
  const std::size_t stride = band.tables->tableStride();
  const std::ptrdiff_t blocks = band.planes->width / 2;
  for (std::ptrdiff_t b = 0; b < blocks; ++b) {
    const std::uint16_t* table = tables + samples[2 * b] * stride;
    forwardWeights[b] = table[forward[b]];
    backwardWeights[b] = table[backward[b]];
  }
}

inline void AccumulateDisplacementImpl(const SimilarityBand& band, int dy, int dx) {
  const WorkPlanes& planes = *band.planes;
  const Reach reach = ReachOf(band, dy, dx);
  Distances(band, reach, dy, dx);
  const std::size_t stride = band.blockStride;
  const bool oneTable = band.tables->tableStride() == 0;
  if (oneTable) {
    for (int row = 0; row <= reach.lastRow - reach.firstRow; ++row) {
      LookUp(band.tables->Table(0), band.tables->storedEntries() - 1,
             band.distances + static_cast<std::size_t>(row) * stride, reach.columns);
    }
  }
  for (int row = 0; row < band.blockRows; ++row) {
    const std::uint16_t* forward =
        band.distances + static_cast<std::size_t>(row) * stride + reach.forwardColumn;
    const std::uint16_t* backward =
        band.distances + static_cast<std::size_t>(row + reach.backwardRow) * stride + reach.backwardColumn;
    const std::ptrdiff_t y = planes.border + 2 * (band.firstBlockRow + row);
    const std::ptrdiff_t place = y * planes.stride + planes.border;
    if (!oneTable) {
      WeightsByIntensity(band, planes.high + place, forward, backward, band.weightRows,
                         band.weightRows + stride);
      forward = band.weightRows;
      backward = band.weightRows + stride;
    }
    const std::ptrdiff_t away = dy * planes.stride + dx;
    AddBlockRow(band, row, forward, backward, place + away, place - away);
  }
}

inline void InitBandImpl(const SimilarityBand& band) {
  const WorkPlanes& planes = *band.planes;
  const std::size_t pixels = 2 * band.blockStride;
  const auto blockRows = static_cast<std::size_t>(band.blockRows);
  std::fill_n(band.weightSum, blockRows * band.blockStride, kWeightOne);
  constexpr auto kOne = static_cast<std::int32_t>(kWeightOne);
  std::fill_n(band.highSum, 2 * blockRows * pixels, 0);
  if (planes.low != nullptr) std::fill_n(band.lowSum, 2 * blockRows * pixels, 0);
  for (std::size_t row = 0; row < 2 * blockRows; ++row) {
    const std::ptrdiff_t y = planes.border + 2 * band.firstBlockRow + static_cast<std::ptrdiff_t>(row);
    const std::ptrdiff_t place = y * planes.stride + planes.border;
    for (std::size_t x = 0; x < static_cast<std::size_t>(planes.width); ++x) {
      band.highSum[row * pixels + PixelPlace(x)] = planes.high[place + static_cast<std::ptrdiff_t>(x)] * kOne;
      if (planes.low == nullptr) continue;
      band.lowSum[row * pixels + PixelPlace(x)] = planes.low[place + static_cast<std::ptrdiff_t>(x)] * kOne;
    }
  }
}

template <typename T>
inline void NormaliseRow(const SimilarityBand& band, std::size_t row, T* HWY_RESTRICT out,
                         std::size_t width) {
  const std::size_t sums = row * 2 * band.blockStride;
  const std::size_t weights = row / 2 * band.blockStride;
  constexpr double kLargest = sizeof(T) == 1 ? 255.0 : 65535.0;
  for (std::size_t x = 0; x < width; ++x) {
    const std::size_t place = PixelPlace(x);
    double value = band.highSum[sums + place];
    if constexpr (sizeof(T) == 2) value = value * 256.0 + band.lowSum[sums + place];
    const double mean = value / band.weightSum[weights + BlockPlace(x / 2)] + 0.5;
    out[x] = static_cast<T>(std::min(mean, kLargest));
  }
}

inline void NormaliseBandImpl(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride,
                              int width, int bits) {
  for (std::size_t row = 0; row < 2 * static_cast<std::size_t>(band.blockRows); ++row) {
    unsigned char* out = rows + static_cast<std::ptrdiff_t>(row) * rowStride;
    if (bits == 8) {
      NormaliseRow(band, row, out, static_cast<std::size_t>(width));
    } else {
      NormaliseRow(band, row, reinterpret_cast<std::uint16_t*>(out), static_cast<std::size_t>(width));
    }
  }
}

inline std::int64_t TargetImpl() {
  return HWY_TARGET;
}

}  // namespace HWY_NAMESPACE
}  // namespace mirellon::engine
HWY_AFTER_NAMESPACE();

#endif  // MIRELLON_SIMILARITY_BAND_INL_H_
