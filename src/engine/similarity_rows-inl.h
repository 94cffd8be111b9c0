// The row steps of the similarity filter for one instruction set; included once per target.
//
// Every step takes plain pointers and a count; the vector forms may read and write up to a vector past it.
// The scalar target, whose vectors have one lane, has plain forms of its own.

#if defined(MIRELLON_SIMILARITY_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef MIRELLON_SIMILARITY_ROWS_INL_H_
#undef MIRELLON_SIMILARITY_ROWS_INL_H_
#else
#define MIRELLON_SIMILARITY_ROWS_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/similarity_band.h"
#include "engine/weight_tables.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Where one displacement keeps the triple sums of the last three rows, which take turns.
struct TripleRows {
  std::uint16_t* oldest;
  std::uint16_t* middle;
  std::uint16_t* newest;
};

// What two neighbouring displacements read and write for a row of `columns` blocks. Distances are held to
// `tooFar`, whose weight is 0, and are all that for a displacement that does not exist.
struct PairStep {
  const std::uint8_t* own;      // the upper samples of the newest row, from one block earlier on
  const std::uint8_t* partner;  // those the first displacement leads to
  std::ptrdiff_t stride;        // of the samples
  int columns;
  int tooFar;
  std::uint16_t* blockSums;  // scratch for one row
  TripleRows triples[2];
  bool exists[2];

  // To the next row of blocks.
  void Advance() {
    own += 2 * stride;
    partner += 2 * stride;
    for (TripleRows& rows : triples) rows = {rows.middle, rows.newest, rows.oldest};
  }
};

// What adding the displacements of a dy to a row of blocks reads and writes. A block's pixels are the even
// and the odd column of its upper row, then of its lower.
constexpr int kBlockPixels = 4;
struct AddStep {
  const std::uint8_t* samples;  // the upper ones that the first pair of block 0's first pixel weighs
  std::ptrdiff_t stride;        // to the lower ones
  bool swapped;                 // whether of a pair's samples that on the right belongs to the first weight
  int pairs;
  const std::uint32_t* weights[kMostPairs];  // rows; the samples of each lie a block right of those before
  std::ptrdiff_t blocks;
  std::int32_t* sums[kBlockPixels];
  std::int32_t* weightSums;
  bool fusedProducts;          // whether one instruction may multiply and add, where a target knows of that
  std::uint32_t* samplePairs;  // scratch: kBlockPixels rows,
  std::size_t rowStride;       // so far apart
};

// Two weights as one word: that of a pair's first displacement, and that of its second above it.
HWY_INLINE std::uint32_t Pack(std::uint32_t first, std::uint32_t second) {
  return first | (second << 16U);
}

#if HWY_TARGET == HWY_SCALAR

// sums[j]: the absolute differences of the 2 x 2 block at columns 2j, 2j + 1 of `row` and the row after it.
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

// triples[j] = sums[j] + sums[j + 1] + sums[j + 2]
inline void TripleSums(const std::uint16_t* HWY_RESTRICT sums, std::uint16_t* HWY_RESTRICT triples,
                       int count) {
  for (std::ptrdiff_t j = 0; j < count; ++j) {
    triples[j] = static_cast<std::uint16_t>(sums[j] + sums[j + 1] + sums[j + 2]);
  }
}

// TripleSums into `newest`, and boxes = oldest + middle + newest, held to `largest`.
inline void BoxSums(const std::uint16_t* HWY_RESTRICT sums, const std::uint16_t* HWY_RESTRICT oldest,
                    const std::uint16_t* HWY_RESTRICT middle, int largest, std::uint16_t* HWY_RESTRICT newest,
                    std::uint16_t* HWY_RESTRICT boxes, int count) {
  TripleSums(sums, newest, count);
  for (std::ptrdiff_t j = 0; j < count; ++j) {
    boxes[j] = static_cast<std::uint16_t>(std::min(oldest[j] + middle[j] + newest[j], largest));
  }
}

// For every pair k and block b: the two weights of weights[k][b] times the two samples that lie k blocks on
// from each of the block's pixels go to its sums, with kWeights the weights themselves to weightSums[b].
template <bool kWeights>
inline void AddPairs(const AddStep& step) {
  const auto weighted = [&](std::uint32_t weight, const std::uint8_t* pair) {
    const std::uint32_t first = pair[step.swapped ? 1 : 0];
    const std::uint32_t second = pair[step.swapped ? 0 : 1];
    return static_cast<std::int32_t>((weight & 0xFFFFU) * first + (weight >> 16U) * second);
  };
  for (int k = 0; k < step.pairs; ++k) {
    for (std::ptrdiff_t b = 0; b < step.blocks; ++b) {
      const std::uint32_t weight = step.weights[k][b];
      if constexpr (kWeights)
        step.weightSums[b] += static_cast<std::int32_t>((weight & 0xFFFFU) + (weight >> 16U));
      const std::uint8_t* upper = step.samples + 2 * (b + k);
      const std::uint8_t* lower = upper + step.stride;
      step.sums[0][b] += weighted(weight, upper);
      step.sums[1][b] += weighted(weight, upper + 1);
      step.sums[2][b] += weighted(weight, lower);
      step.sums[3][b] += weighted(weight, lower + 1);
    }
  }
}

#else  // HWY_TARGET != HWY_SCALAR; what each step gives stands above

using D8 = hn::ScalableTag<std::uint8_t>;
using D16 = hn::ScalableTag<std::uint16_t>;
using D16i = hn::ScalableTag<std::int16_t>;
using D32 = hn::ScalableTag<std::uint32_t>;
using D32i = hn::ScalableTag<std::int32_t>;

// Sums of neighbouring bytes, as 16-bit lanes.
template <class V8>
HWY_INLINE hn::Vec<D16> SumsOf2(V8 bytes) {
#if HWY_TARGET == HWY_AVX2
  return hn::Vec<D16>{_mm256_maddubs_epi16(bytes.raw, _mm256_set1_epi8(1))};
#elif HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_SSSE3
  return hn::Vec<D16>{_mm_maddubs_epi16(bytes.raw, _mm_set1_epi8(1))};
#else
  const D16 d16;
  const auto pairs = hn::BitCast(d16, bytes);
  return hn::Add(hn::And(pairs, hn::Set(d16, 0xFF)), hn::ShiftRight<8>(pairs));
#endif
}

template <class V8>
HWY_INLINE hn::Vec<D16> PairDifferences(V8 a, V8 b) {
  return SumsOf2(hn::Sub(hn::Max(a, b), hn::Min(a, b)));
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

HWY_INLINE hn::Vec<D16> TripleAt(const std::uint16_t* HWY_RESTRICT sums) {
  const D16 d16;
  const auto outer = hn::Add(hn::LoadU(d16, sums), hn::LoadU(d16, sums + 2));
  return hn::Add(outer, hn::LoadU(d16, sums + 1));
}

inline void TripleSums(const std::uint16_t* HWY_RESTRICT sums, std::uint16_t* HWY_RESTRICT triples,
                       int count) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) hn::StoreU(TripleAt(sums + j), d16, triples + j);
}

inline void BoxSums(const std::uint16_t* HWY_RESTRICT sums, const std::uint16_t* HWY_RESTRICT oldest,
                    const std::uint16_t* HWY_RESTRICT middle, int largest, std::uint16_t* HWY_RESTRICT newest,
                    std::uint16_t* HWY_RESTRICT boxes, int count) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto limit = hn::Set(d16, static_cast<std::uint16_t>(largest));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto triple = TripleAt(sums + j);
    hn::StoreU(triple, d16, newest + j);
    const auto box = hn::Add(hn::Add(hn::LoadU(d16, oldest + j), hn::LoadU(d16, middle + j)), triple);
    hn::StoreU(hn::Min(box, limit), d16, boxes + j);
  }
}

#if HWY_TARGET != HWY_AVX3  // which has its own

// Neighbouring samples as words, the left one below unless swapped: even[j] those at 2j and 2j + 1, odd[j]
// those at 2j + 1 and 2j + 2.
inline void SamplePairs(const std::uint8_t* HWY_RESTRICT samples, bool swapped,
                        std::uint32_t* HWY_RESTRICT even, std::uint32_t* HWY_RESTRICT odd,
                        std::ptrdiff_t count) {
  const D16 d16;
  const D32 d32;
  const hn::Rebind<std::uint8_t, D16> d8;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32));
  const auto pairsAt = [&](const std::uint8_t* at) {
    const auto pairs = hn::PromoteTo(d16, hn::LoadU(d8, at));
    return hn::BitCast(d32, swapped ? hn::Reverse2(d16, pairs) : pairs);
  };
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    hn::StoreU(pairsAt(samples + 2 * j), d32, even + j);
    hn::StoreU(pairsAt(samples + 2 * j + 1), d32, odd + j);
  }
}

// One multiply-add of neighbouring 16-bit lanes.
template <class V16>
HWY_INLINE hn::Vec<D32i> PairProducts(V16 a, V16 b) {
  const D32i d32;
  auto odd = hn::Zero(d32);
  const auto even = hn::ReorderWidenMulAccumulate(d32, a, b, hn::Zero(d32), odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

HWY_INLINE hn::Vec<D16i> LoadPairs(const std::uint32_t* HWY_RESTRICT pairs) {
  return hn::BitCast(D16i(), hn::LoadU(D32(), pairs));
}

template <bool kWeights>
inline void AddPairs(const AddStep& step) {
  const D16i d16;
  const D32i d32i;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32i));
  const auto ones = hn::Set(d16, 1);
  std::uint32_t* const upperEven = step.samplePairs;
  std::uint32_t* const upperOdd = upperEven + step.rowStride;
  std::uint32_t* const lowerEven = upperOdd + step.rowStride;
  std::uint32_t* const lowerOdd = lowerEven + step.rowStride;
  SamplePairs(step.samples, step.swapped, upperEven, upperOdd, step.blocks + step.pairs);
  SamplePairs(step.samples + step.stride, step.swapped, lowerEven, lowerOdd, step.blocks + step.pairs);
  for (std::ptrdiff_t b = 0; b < step.blocks; b += lanes) {
    auto sum0 = hn::LoadU(d32i, step.sums[0] + b);
    auto sum1 = hn::LoadU(d32i, step.sums[1] + b);
    auto sum2 = hn::LoadU(d32i, step.sums[2] + b);
    auto sum3 = hn::LoadU(d32i, step.sums[3] + b);
    auto weightSum = kWeights ? hn::LoadU(d32i, step.weightSums + b) : hn::Zero(d32i);
    for (int k = 0; k < step.pairs; ++k) {
      const auto weight = LoadPairs(step.weights[k] + b);
      sum0 = hn::Add(sum0, PairProducts(LoadPairs(upperEven + b + k), weight));
      sum1 = hn::Add(sum1, PairProducts(LoadPairs(upperOdd + b + k), weight));
      sum2 = hn::Add(sum2, PairProducts(LoadPairs(lowerEven + b + k), weight));
      sum3 = hn::Add(sum3, PairProducts(LoadPairs(lowerOdd + b + k), weight));
      if constexpr (kWeights) weightSum = hn::Add(weightSum, PairProducts(weight, ones));
    }
    hn::StoreU(sum0, d32i, step.sums[0] + b);
    hn::StoreU(sum1, d32i, step.sums[1] + b);
    hn::StoreU(sum2, d32i, step.sums[2] + b);
    hn::StoreU(sum3, d32i, step.sums[3] + b);
    if constexpr (kWeights) hn::StoreU(weightSum, d32i, step.weightSums + b);
  }
}

#endif  // HWY_TARGET != HWY_AVX3

#endif  // HWY_TARGET == HWY_SCALAR

// ---------------------------------------------------------------------------------------------------------------
// Weights from tables in memory.

#if HWY_ARCH_X86

// weights[i] = the entry of tables[i] at first[i], and that at second[i] above it, for four i. Distances are
// read four at a time and weights put together in a vector: quicker than gathering and than plain loops.
HWY_INLINE void LookUpFour(const std::uint16_t* const* tables, const std::uint16_t* first,
                           const std::uint16_t* second, std::uint32_t* weights) {
  std::uint64_t firsts = 0;
  std::uint64_t seconds = 0;
  hwy::CopyBytes<sizeof firsts>(first, &firsts);
  hwy::CopyBytes<sizeof seconds>(second, &seconds);
  const auto at = [](const std::uint16_t* table, std::uint64_t distances, int i) {
    return table[static_cast<std::uint16_t>(distances >> (16 * i))];
  };
  __m128i found = _mm_cvtsi32_si128(at(tables[0], firsts, 0));
  found = _mm_insert_epi16(found, at(tables[0], seconds, 0), 1);
  found = _mm_insert_epi16(found, at(tables[1], firsts, 1), 2);
  found = _mm_insert_epi16(found, at(tables[1], seconds, 1), 3);
  found = _mm_insert_epi16(found, at(tables[2], firsts, 2), 4);
  found = _mm_insert_epi16(found, at(tables[2], seconds, 2), 5);
  found = _mm_insert_epi16(found, at(tables[3], firsts, 3), 6);
  found = _mm_insert_epi16(found, at(tables[3], seconds, 3), 7);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(weights), found);
}

#else

HWY_INLINE void LookUpFour(const std::uint16_t* const* tables, const std::uint16_t* first,
                           const std::uint16_t* second, std::uint32_t* weights) {
  for (int i = 0; i < 4; ++i) weights[i] = Pack(tables[i][first[i]], tables[i][second[i]]);
}

#endif  // HWY_ARCH_X86

// Whether eight blocks from here on have no weight.
HWY_INLINE bool AllTooFar(const std::uint16_t* first, const std::uint16_t* second, int tooFar) {
#if HWY_TARGET == HWY_SCALAR
  return std::all_of(first, first + 8, [=](std::uint16_t distance) { return distance == tooFar; }) &&
         std::all_of(second, second + 8, [=](std::uint16_t distance) { return distance == tooFar; });
#else
  const hn::FixedTag<std::uint16_t, 8> d16;
  const auto nearest = hn::Min(hn::LoadU(d16, first), hn::LoadU(d16, second));
  return hn::AllTrue(d16, hn::Eq(nearest, hn::Set(d16, static_cast<std::uint16_t>(tooFar))));
#endif
}

// weights[b] = that of first[b], and that of second[b] above it, for `blocks` blocks; the table of block b
// begins at tables[b], or with kOneTable at tables[0] for all.
template <bool kOneTable>
inline void PairWeights(const std::uint16_t* const* HWY_RESTRICT tables, int tooFar,
                        const std::uint16_t* HWY_RESTRICT first, const std::uint16_t* HWY_RESTRICT second,
                        std::uint32_t* HWY_RESTRICT weights, std::ptrdiff_t blocks) {
  const std::uint16_t* const sameTable[4] = {tables[0], tables[0], tables[0], tables[0]};
  for (std::ptrdiff_t b = 0; b < blocks; b += 8) {
    if (!kOneTable && AllTooFar(first + b, second + b, tooFar)) {
      std::fill_n(weights + b, 8, 0U);
      continue;
    }
    for (std::ptrdiff_t i = b; i < b + 8; i += 4)
      LookUpFour(kOneTable ? sameTable : tables + i, first + i, second + i, weights + i);
  }
}

// The distances of both displacements for the row above the newest.
inline void FindPairDistances(const PairStep& step, std::uint16_t* first, std::uint16_t* second);

// One of a distance's two directions: the table of each block, how far right of the block's own column pair
// k's distances begin, and the row that its weights go to.
struct DirectionStep {
  bool wanted;
  const std::uint16_t* const* tables;
  std::ptrdiff_t column[kMostPairs];
  std::uint32_t* weights[kMostPairs];
};

// The weights of all pairs in both directions. distances: scratch for two rows that lie `stride` apart.
inline void WeighPairsByIntensityFromMemory(const PairStep* steps, int pairs, const DirectionStep* directions,
                                            std::ptrdiff_t blocks, std::uint16_t* distances,
                                            std::size_t stride) {
  for (int k = 0; k < pairs; ++k) {
    FindPairDistances(steps[k], distances, distances + stride);
    for (int i = 0; i < 2; ++i) {
      const DirectionStep& direction = directions[i];
      if (!direction.wanted) continue;
      const std::uint16_t* first = distances + direction.column[k];
      PairWeights<false>(direction.tables, steps[k].tooFar, first, first + stride, direction.weights[k],
                         blocks);
    }
  }
}

#if HWY_TARGET != HWY_AVX3  // which has ways of its own

// The newest row's triple sums, nothing else.
inline void FindPairTriples(const PairStep& step) {
  for (std::ptrdiff_t i = 0; i < 2; ++i) {
    if (!step.exists[i]) continue;
    BlockSums(step.own, step.partner + i, step.stride, step.blockSums, step.columns + 2);
    TripleSums(step.blockSums, step.triples[i].newest, step.columns);
  }
}

inline void FindPairDistances(const PairStep& step, std::uint16_t* first, std::uint16_t* second) {
  std::uint16_t* const rows[2] = {first, second};
  for (std::ptrdiff_t i = 0; i < 2; ++i) {
    if (!step.exists[i]) {
      std::fill_n(rows[i], step.columns, static_cast<std::uint16_t>(step.tooFar));
      continue;
    }
    BlockSums(step.own, step.partner + i, step.stride, step.blockSums, step.columns + 2);
    const TripleRows& triples = step.triples[i];
    BoxSums(step.blockSums, triples.oldest, triples.middle, step.tooFar, triples.newest, rows[i],
            step.columns);
  }
}

// The weights of all pairs by one table, in rows that lie `stride` apart. distances: scratch for two rows.
inline void WeighPairs(const PairStep* steps, int pairs, const std::uint16_t* table, std::uint16_t* distances,
                       std::uint32_t* weights, std::size_t stride) {
  for (int k = 0; k < pairs; ++k) {
    FindPairDistances(steps[k], distances, distances + stride);
    PairWeights<true>(&table, steps[k].tooFar, distances, distances + stride,
                      weights + static_cast<std::size_t>(k) * stride, steps[k].columns);
  }
}

inline void WeighPairsByIntensity(const PairStep* steps, int pairs, const DirectionStep* directions,
                                  std::ptrdiff_t blocks, std::uint16_t* distances,
                                  std::uint32_t* /*pairRows*/, std::size_t stride) {
  WeighPairsByIntensityFromMemory(steps, pairs, directions, blocks, distances, stride);
}

#endif  // HWY_TARGET != HWY_AVX3

}  // namespace HWY_NAMESPACE
}  // namespace mirellon::engine
HWY_AFTER_NAMESPACE();

#endif  // MIRELLON_SIMILARITY_ROWS_INL_H_
