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

#include "engine/weight_tables.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Two weights as one word: that of a pair's first displacement, and that of its second above it.
HWY_INLINE std::uint32_t Pack(std::uint32_t first, std::uint32_t second) {
  return first | (second << 16U);
}

// Weights by the table of each block's intensity: `samples` are the picture's, every other one counts.
inline void PairWeightsByIntensity(const WeightTables& tables, const std::uint8_t* HWY_RESTRICT samples,
                                   const std::uint16_t* HWY_RESTRICT first,
                                   const std::uint16_t* HWY_RESTRICT second,
                                   std::uint32_t* HWY_RESTRICT weights, std::ptrdiff_t blocks) {
  const std::uint16_t* start = tables.Table(0);
  const std::size_t stride = tables.tableStride();
  for (std::ptrdiff_t b = 0; b < blocks; ++b) {
    const std::uint16_t* table = start + samples[2 * b] * stride;
    weights[b] = Pack(table[first[b]], table[second[b]]);
  }
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

// weights[j] = the table's at first[j], and its at second[j] above it; the weight of distance `zero` is 0.
inline void PairWeights(const std::uint16_t* HWY_RESTRICT table, int /*zero*/,
                        const std::uint16_t* HWY_RESTRICT first, const std::uint16_t* HWY_RESTRICT second,
                        std::uint32_t* HWY_RESTRICT weights, int count) {
  for (std::ptrdiff_t j = 0; j < count; ++j) weights[j] = Pack(table[first[j]], table[second[j]]);
}

// pairs[x] = first[x], and second[x] above it.
inline void SamplePairs(const std::uint8_t* HWY_RESTRICT first, const std::uint8_t* HWY_RESTRICT second,
                        std::uint32_t* HWY_RESTRICT pairs, int count) {
  for (std::ptrdiff_t x = 0; x < count; ++x) pairs[x] = Pack(first[x], second[x]);
}

// For each of `pairs` pairs k, blocks b and pixels x = 2b, 2b + 1: the two weights of weights[k][b] times the
// two samples of upper[shift[k] + x] go to upperSum[x], likewise for lower; with kWeights their sum to
// weightSum[b].
template <bool kWeights>
inline void AddPairs(const std::uint32_t* const* weights, const std::ptrdiff_t* shift, int pairs,
                     const std::uint32_t* HWY_RESTRICT upper, const std::uint32_t* HWY_RESTRICT lower,
                     std::ptrdiff_t blocks, std::int32_t* HWY_RESTRICT upperSum,
                     std::int32_t* HWY_RESTRICT lowerSum, std::int32_t* HWY_RESTRICT weightSum) {
  const auto product = [](std::uint32_t weight, std::uint32_t sample) {
    return static_cast<std::int32_t>((weight & 0xFFFFU) * (sample & 0xFFFFU) +
                                     (weight >> 16U) * (sample >> 16U));
  };
  for (int k = 0; k < pairs; ++k) {
    for (std::ptrdiff_t b = 0; b < blocks; ++b) {
      const std::uint32_t weight = weights[k][b];
      if constexpr (kWeights) weightSum[b] += static_cast<std::int32_t>((weight & 0xFFFFU) + (weight >> 16U));
      for (std::ptrdiff_t x = 2 * b; x < 2 * b + 2; ++x) {
        upperSum[x] += product(weight, upper[shift[k] + x]);
        lowerSum[x] += product(weight, lower[shift[k] + x]);
      }
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
#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
  return hn::Vec<D16>{_mm512_maddubs_epi16(bytes.raw, _mm512_set1_epi8(1))};
#elif HWY_TARGET == HWY_AVX2
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
  return SumsOf2(hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a)));
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

// Four distances of each displacement are read as one word and taken apart in registers, which is quicker
// than gathering, and than eight loads; compilers make something slow of the plain loop.
HWY_INLINE void LookUpFour(const std::uint16_t* HWY_RESTRICT table, const std::uint16_t* HWY_RESTRICT first,
                           const std::uint16_t* HWY_RESTRICT second, std::uint32_t* HWY_RESTRICT weights) {
  std::uint64_t firsts = 0;
  std::uint64_t seconds = 0;
  hwy::CopyBytes<sizeof firsts>(first, &firsts);
  hwy::CopyBytes<sizeof seconds>(second, &seconds);
  for (int i = 0; i < 4; i += 2) {
    const std::uint64_t low = Pack(table[firsts & 0xFFFFU], table[seconds & 0xFFFFU]);
    const std::uint64_t high = Pack(table[firsts >> 16U & 0xFFFFU], table[seconds >> 16U & 0xFFFFU]);
    const std::uint64_t both = low | high << 32U;
    hwy::CopyBytes<sizeof both>(&both, weights + i);
    firsts >>= 32U;
    seconds >>= 32U;
  }
}

// Where a whole vector of distances lies beyond the table nothing needs looking up.
inline void PairWeightsFromMemory(const std::uint16_t* HWY_RESTRICT table, int zero,
                                  const std::uint16_t* HWY_RESTRICT first,
                                  const std::uint16_t* HWY_RESTRICT second,
                                  std::uint32_t* HWY_RESTRICT weights, int count) {
  const D16 d16;
  const D32 d32;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto limit = hn::Set(d16, static_cast<std::uint16_t>(zero));
  for (std::ptrdiff_t j = 0; j < count; j += lanes) {
    const auto nearest = hn::Min(hn::LoadU(d16, first + j), hn::LoadU(d16, second + j));
    if (hn::AllTrue(d16, hn::Eq(nearest, limit))) {
      hn::StoreU(hn::Zero(d32), d32, weights + j);
      hn::StoreU(hn::Zero(d32), d32, weights + j + lanes / 2);
      continue;
    }
    for (std::ptrdiff_t k = j; k < j + lanes; k += 4) LookUpFour(table, first + k, second + k, weights + k);
  }
}

#if HWY_TARGET == HWY_AVX3

// Weights of 32 distances from registers: two hold 64 entries, of which one instruction picks 32. The parts
// of the table are gone through as far as a lane needs them; a distance of `zero` needs none.
HWY_INLINE __m512i LookUp32(const std::uint16_t* HWY_RESTRICT table, __m512i zero, __m512i distances) {
  const __mmask32 near = _mm512_cmplt_epu16_mask(distances, zero);
  __mmask32 wanted = near;
  __m512i weights = _mm512_setzero_si512();
  for (std::ptrdiff_t part = 0; wanted != 0; part += kTableStep) {
    const __m512i lower = _mm512_load_si512(table + part);
    const __m512i upper = _mm512_load_si512(table + part + kTableStep / 2);
    weights = _mm512_mask_mov_epi16(weights, wanted, _mm512_permutex2var_epi16(lower, distances, upper));
    const __m512i next = _mm512_set1_epi16(static_cast<std::int16_t>(part + kTableStep));
    wanted = _mm512_mask_cmpge_epu16_mask(near, distances, next);
  }
  return weights;
}

inline void PairWeightsFromRegisters(const std::uint16_t* HWY_RESTRICT table, int zero,
                                     const std::uint16_t* HWY_RESTRICT first,
                                     const std::uint16_t* HWY_RESTRICT second,
                                     std::uint32_t* HWY_RESTRICT weights, int count) {
  const __m512i limit = _mm512_set1_epi16(static_cast<std::int16_t>(zero));
  HWY_ALIGN std::uint16_t order[64];  // of the interleaved lanes: those of the second operand begin at 32
  for (std::uint16_t i = 0; i < 64; ++i) order[i] = static_cast<std::uint16_t>(i / 2 + i % 2 * 32);
  const __m512i lowerOrder = _mm512_load_si512(order);
  const __m512i upperOrder = _mm512_load_si512(order + 32);
  for (std::ptrdiff_t j = 0; j < count; j += 32) {
    const __m512i firsts = LookUp32(table, limit, _mm512_loadu_si512(first + j));
    const __m512i seconds = LookUp32(table, limit, _mm512_loadu_si512(second + j));
    _mm512_storeu_si512(weights + j, _mm512_permutex2var_epi16(firsts, lowerOrder, seconds));
    _mm512_storeu_si512(weights + j + 16, _mm512_permutex2var_epi16(firsts, upperOrder, seconds));
  }
}

#endif  // HWY_TARGET == HWY_AVX3

inline void PairWeights(const std::uint16_t* HWY_RESTRICT table, int zero,
                        const std::uint16_t* HWY_RESTRICT first, const std::uint16_t* HWY_RESTRICT second,
                        std::uint32_t* HWY_RESTRICT weights, int count) {
#if HWY_TARGET == HWY_AVX3
  // Longer tables (strengths above 12) are no quicker from registers than from memory.
  constexpr int kMostParts = 4;
  if (zero < kMostParts * kTableStep)
    return PairWeightsFromRegisters(table, zero, first, second, weights, count);
#endif
  PairWeightsFromMemory(table, zero, first, second, weights, count);
}

inline void SamplePairs(const std::uint8_t* HWY_RESTRICT first, const std::uint8_t* HWY_RESTRICT second,
                        std::uint32_t* HWY_RESTRICT pairs, int count) {
  const D32 d32;
  const hn::Rebind<std::uint8_t, D32> d8;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32));
  for (std::ptrdiff_t x = 0; x < count; x += lanes) {
    const auto low = hn::PromoteTo(d32, hn::LoadU(d8, first + x));
    const auto high = hn::PromoteTo(d32, hn::LoadU(d8, second + x));
    hn::StoreU(hn::Or(low, hn::ShiftLeft<16>(high)), d32, pairs + x);
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

// The indices that give each block's weights to both its pixels: lower half of a vector of blocks, and upper.
template <int kUpper>
HWY_INLINE auto TwiceEach() {
  const D32 d32;
  HWY_ALIGN std::int32_t indices[hn::MaxLanes(D32())];
  const auto lanes = static_cast<std::int32_t>(hn::Lanes(d32));
  for (std::int32_t i = 0; i < lanes; ++i) indices[i] = (kUpper * lanes + i) / 2;
  return hn::SetTableIndices(d32, indices);
}

template <bool kWeights>
inline void AddPairs(const std::uint32_t* const* weights, const std::ptrdiff_t* shift, int pairs,
                     const std::uint32_t* HWY_RESTRICT upper, const std::uint32_t* HWY_RESTRICT lower,
                     std::ptrdiff_t blocks, std::int32_t* HWY_RESTRICT upperSum,
                     std::int32_t* HWY_RESTRICT lowerSum, std::int32_t* HWY_RESTRICT weightSum) {
  const D16i d16;
  const D32 d32;
  const D32i d32i;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32));
  const auto lowerHalf = TwiceEach<0>();
  const auto upperHalf = TwiceEach<1>();
  const auto ones = hn::Set(d16, 1);
  for (std::ptrdiff_t b = 0; b < blocks; b += lanes) {
    const std::ptrdiff_t x = 2 * b;
    auto upper0 = hn::LoadU(d32i, upperSum + x);
    auto upper1 = hn::LoadU(d32i, upperSum + x + lanes);
    auto lower0 = hn::LoadU(d32i, lowerSum + x);
    auto lower1 = hn::LoadU(d32i, lowerSum + x + lanes);
    auto sum = kWeights ? hn::LoadU(d32i, weightSum + b) : hn::Zero(d32i);
    for (int k = 0; k < pairs; ++k) {
      const auto weight = hn::LoadU(d32, weights[k] + b);
      if (hn::AllTrue(d32, hn::Eq(weight, hn::Zero(d32)))) continue;
      const auto weight0 = hn::BitCast(d16, hn::TableLookupLanes(weight, lowerHalf));
      const auto weight1 = hn::BitCast(d16, hn::TableLookupLanes(weight, upperHalf));
      const std::uint32_t* HWY_RESTRICT above = upper + shift[k] + x;
      const std::uint32_t* HWY_RESTRICT below = lower + shift[k] + x;
      upper0 = hn::Add(upper0, PairProducts(LoadPairs(above), weight0));
      upper1 = hn::Add(upper1, PairProducts(LoadPairs(above + lanes), weight1));
      lower0 = hn::Add(lower0, PairProducts(LoadPairs(below), weight0));
      lower1 = hn::Add(lower1, PairProducts(LoadPairs(below + lanes), weight1));
      if constexpr (kWeights) sum = hn::Add(sum, PairProducts(hn::BitCast(d16, weight), ones));
    }
    hn::StoreU(upper0, d32i, upperSum + x);
    hn::StoreU(upper1, d32i, upperSum + x + lanes);
    hn::StoreU(lower0, d32i, lowerSum + x);
    hn::StoreU(lower1, d32i, lowerSum + x + lanes);
    if constexpr (kWeights) hn::StoreU(sum, d32i, weightSum + b);
  }
}

#endif  // HWY_TARGET == HWY_SCALAR

}  // namespace HWY_NAMESPACE
}  // namespace mirellon::engine
HWY_AFTER_NAMESPACE();

#endif  // MIRELLON_SIMILARITY_ROWS_INL_H_
