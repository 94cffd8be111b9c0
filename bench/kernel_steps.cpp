#include "kernel_steps.h"

#include <algorithm>
#include <utility>

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/kernel_steps.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace mirellon::bench::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D8 = hn::ScalableTag<std::uint8_t>;
using D16 = hn::ScalableTag<std::uint16_t>;
using D16i = hn::ScalableTag<std::int16_t>;
using D32 = hn::ScalableTag<std::uint32_t>;
using D32i = hn::ScalableTag<std::int32_t>;

void LookUpFromMemoryImpl(const StepData& data) {
  const std::uint16_t* HWY_RESTRICT table = data.table;
  for (std::ptrdiff_t b = 0; b < data.blocks; b += 8) {
    std::uint64_t distances[2] = {};
    hwy::CopyBytes<sizeof distances>(data.distances + b, distances);
    const auto at = [&](int i) {
      return table[static_cast<std::uint16_t>(distances[i / 4] >> (16 * (i % 4)))];
    };
#if HWY_ARCH_X86
    __m128i weights = _mm_cvtsi32_si128(at(0));
    weights = _mm_insert_epi16(weights, at(1), 1);
    weights = _mm_insert_epi16(weights, at(2), 2);
    weights = _mm_insert_epi16(weights, at(3), 3);
    weights = _mm_insert_epi16(weights, at(4), 4);
    weights = _mm_insert_epi16(weights, at(5), 5);
    weights = _mm_insert_epi16(weights, at(6), 6);
    weights = _mm_insert_epi16(weights, at(7), 7);
    _mm_store_si128(reinterpret_cast<__m128i*>(data.weights + b), weights);
#else
    for (int i = 0; i < 8; ++i) data.weights[b + i] = at(i);
#endif
  }
}

#if HWY_TARGET == HWY_SCALAR

void AbsoluteDifferencesImpl(const StepData& data) {
  const auto difference = [](int a, int b) { return a > b ? a - b : b - a; };
  for (std::ptrdiff_t b = 0; b < data.blocks; ++b) {
    const std::ptrdiff_t x = 2 * b;
    data.sums[b] = static_cast<std::uint16_t>(
        difference(data.upper[x], data.upper2[x]) + difference(data.upper[x + 1], data.upper2[x + 1]) +
        difference(data.lower[x], data.lower2[x]) + difference(data.lower[x + 1], data.lower2[x + 1]));
  }
}

void BoxSumsImpl(const StepData& data) {
  for (std::ptrdiff_t b = 0; b < data.blocks; ++b) {
    const int triple = data.sums[b] + data.sums[b + 1] + data.sums[b + 2];
    data.newest[b] = static_cast<std::uint16_t>(triple);
    data.distances[b] =
        static_cast<std::uint16_t>(std::min(data.oldest[b] + data.middle[b] + triple, kTableEntries - 1));
  }
}

bool LookUpFromRegistersImpl(const StepData& /*data*/) {
  return false;
}

void AccumulateImpl(const StepData& data) {
  for (std::ptrdiff_t k = 0; k < kPairs; ++k) {
    for (std::ptrdiff_t b = 0; b < data.blocks; ++b) {
      const std::uint32_t weight = data.pairs[k * data.blocks + b];
      const std::uint32_t first = weight & 0xFFFFU;
      const std::uint32_t second = weight >> 16U;
      for (std::ptrdiff_t i = 0; i < 4; ++i) {
        const std::uint32_t pair = data.Samples(i)[b + k];
        data.Totals(i)[b] += static_cast<std::int32_t>(first * (pair & 0xFFFFU) + second * (pair >> 16U));
      }
      data.Totals(4)[b] += static_cast<std::int32_t>(first + second);
    }
  }
}

#else

template <class V8>
HWY_INLINE hn::Vec<D16> SumsOf2(V8 bytes) {
#if HWY_TARGET <= HWY_AVX3
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

void AbsoluteDifferencesImpl(const StepData& data) {
  const D8 d8;
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto difference = [](auto a, auto b) { return SumsOf2(hn::Sub(hn::Max(a, b), hn::Min(a, b))); };
  for (std::ptrdiff_t b = 0; b < data.blocks; b += lanes) {
    const auto upper = difference(hn::Load(d8, data.upper + 2 * b), hn::LoadU(d8, data.upper2 + 2 * b));
    const auto lower = difference(hn::Load(d8, data.lower + 2 * b), hn::LoadU(d8, data.lower2 + 2 * b));
    hn::Store(hn::Add(upper, lower), d16, data.sums + b);
  }
}

#if HWY_TARGET <= HWY_AVX3

// Neighbours from registers: unaligned loads of 64 bytes cross cache lines.
void BoxSumsImpl(const StepData& data) {
  HWY_ALIGN std::uint16_t order[64];
  for (std::uint16_t i = 0; i < 32; ++i) {
    order[i] = static_cast<std::uint16_t>(i + 1);
    order[i + 32] = static_cast<std::uint16_t>(i + 2);
  }
  const __m512i oneOn = _mm512_load_si512(order);
  const __m512i twoOn = _mm512_load_si512(order + 32);
  const __m512i limit = _mm512_set1_epi16(kTableEntries - 1);
  __m512i sums = _mm512_load_si512(data.sums);
  for (std::ptrdiff_t b = 0; b < data.blocks; b += 32) {
    const __m512i next = _mm512_load_si512(data.sums + b + 32);
    const __m512i outer = _mm512_add_epi16(sums, _mm512_permutex2var_epi16(sums, twoOn, next));
    const __m512i triple = _mm512_add_epi16(outer, _mm512_permutex2var_epi16(sums, oneOn, next));
    sums = next;
    _mm512_store_si512(data.newest + b, triple);
    const __m512i others =
        _mm512_add_epi16(_mm512_load_si512(data.oldest + b), _mm512_load_si512(data.middle + b));
    _mm512_store_si512(data.distances + b, _mm512_min_epu16(_mm512_add_epi16(others, triple), limit));
  }
}

#else

void BoxSumsImpl(const StepData& data) {
  const D16 d16;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d16));
  const auto limit = hn::Set(d16, kTableEntries - 1);
  for (std::ptrdiff_t b = 0; b < data.blocks; b += lanes) {
    const auto outer = hn::Add(hn::Load(d16, data.sums + b), hn::LoadU(d16, data.sums + b + 2));
    const auto triple = hn::Add(outer, hn::LoadU(d16, data.sums + b + 1));
    hn::Store(triple, d16, data.newest + b);
    const auto others = hn::Add(hn::Load(d16, data.oldest + b), hn::Load(d16, data.middle + b));
    hn::Store(hn::Min(hn::Add(others, triple), limit), d16, data.distances + b);
  }
}

#endif

bool LookUpFromRegistersImpl(const StepData& data) {
#if HWY_TARGET <= HWY_AVX3
  const auto part = [&](int i) { return _mm512_load_si512(data.table + 32 * i); };
  const __m512i p0 = part(0), p1 = part(1), p2 = part(2), p3 = part(3);
  const __m512i p4 = part(4), p5 = part(5), p6 = part(6), p7 = part(7);
  for (std::ptrdiff_t b = 0; b < data.blocks; b += 32) {
    const __m512i distances = _mm512_load_si512(data.distances + b);
    const __mmask32 bit6 = _mm512_test_epi16_mask(distances, _mm512_set1_epi16(64));
    const __mmask32 bit7 = _mm512_test_epi16_mask(distances, _mm512_set1_epi16(128));
    const __m512i low = _mm512_mask_mov_epi16(_mm512_permutex2var_epi16(p0, distances, p1), bit6,
                                              _mm512_permutex2var_epi16(p2, distances, p3));
    const __m512i high = _mm512_mask_mov_epi16(_mm512_permutex2var_epi16(p4, distances, p5), bit6,
                                               _mm512_permutex2var_epi16(p6, distances, p7));
    _mm512_store_si512(data.weights + b, _mm512_mask_mov_epi16(low, bit7, high));
  }
  return true;
#else
  (void)data;
  return false;
#endif
}

#if HWY_TARGET <= HWY_AVX3

template <bool kFused>
HWY_INLINE __m512i AddProducts(__m512i sum, __m512i a, __m512i b) {
  if constexpr (kFused) {
    __asm__("vpdpwssd %2, %1, %0" : "+v"(sum) : "v"(a), "v"(b));  // NOLINT(hicpp-no-assembler)
    return sum;
  } else {
    return _mm512_add_epi32(sum, _mm512_madd_epi16(a, b));
  }
}

// One of a block's pixels: the samples of all pairs in two registers.
struct Pixel {
  __m512i lower;
  __m512i upper;
  __m512i sum;
};

template <bool kFused, int... k>
HWY_INLINE void AddAllPairs(const std::uint32_t* pairs, std::ptrdiff_t stride, Pixel& p0, Pixel& p1,
                            Pixel& p2, Pixel& p3, __m512i& weights,
                            std::integer_sequence<int, k...> /*all*/) {
  const auto add = [&](auto constant) HWY_ATTR {
    constexpr int kPair = decltype(constant)::value;
    const __m512i weight = _mm512_load_si512(pairs + kPair * stride);
    p0.sum = AddProducts<kFused>(p0.sum, _mm512_alignr_epi32(p0.upper, p0.lower, kPair), weight);
    p1.sum = AddProducts<kFused>(p1.sum, _mm512_alignr_epi32(p1.upper, p1.lower, kPair), weight);
    p2.sum = AddProducts<kFused>(p2.sum, _mm512_alignr_epi32(p2.upper, p2.lower, kPair), weight);
    p3.sum = AddProducts<kFused>(p3.sum, _mm512_alignr_epi32(p3.upper, p3.lower, kPair), weight);
    weights = AddProducts<kFused>(weights, weight, _mm512_set1_epi16(1));
  };
  (add(std::integral_constant<int, k>()), ...);
}

template <bool kFused>
void AccumulateFromRegisters(const StepData& data) {
  for (std::ptrdiff_t b = 0; b < data.blocks; b += 16) {
    const auto pixel = [&](std::ptrdiff_t i) HWY_ATTR -> Pixel {
      const std::uint32_t* samples = data.Samples(i) + b;
      return {_mm512_load_si512(samples), _mm512_load_si512(samples + 16),
              _mm512_load_si512(data.Totals(i) + b)};
    };
    Pixel p0 = pixel(0);
    Pixel p1 = pixel(1);
    Pixel p2 = pixel(2);
    Pixel p3 = pixel(3);
    __m512i weights = _mm512_load_si512(data.Totals(4) + b);
    AddAllPairs<kFused>(data.pairs + b, data.blocks, p0, p1, p2, p3, weights,
                        std::make_integer_sequence<int, kPairs>());
    _mm512_store_si512(data.Totals(0) + b, p0.sum);
    _mm512_store_si512(data.Totals(1) + b, p1.sum);
    _mm512_store_si512(data.Totals(2) + b, p2.sum);
    _mm512_store_si512(data.Totals(3) + b, p3.sum);
    _mm512_store_si512(data.Totals(4) + b, weights);
  }
}

void AccumulateImpl(const StepData& data) {
  if (data.fusedProducts) {
    AccumulateFromRegisters<true>(data);
  } else {
    AccumulateFromRegisters<false>(data);
  }
}

#else

// Sums of neighbouring 16-bit products on top of `sum`.
template <class V16, class V32>
HWY_INLINE V32 AddProducts(V32 sum, V16 a, V16 b) {
  const D32i d32;
  auto odd = hn::Zero(d32);
  const auto even = hn::ReorderWidenMulAccumulate(d32, a, b, sum, odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

void AccumulateImpl(const StepData& data) {
  const D16i d16;
  const D32 d32;
  const D32i d32i;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32));
  const auto ones = hn::Set(d16, 1);
  const auto load = [&](const std::uint32_t* from) { return hn::BitCast(d16, hn::LoadU(d32, from)); };
  for (std::ptrdiff_t b = 0; b < data.blocks; b += lanes) {
    auto sum0 = hn::Load(d32i, data.Totals(0) + b);
    auto sum1 = hn::Load(d32i, data.Totals(1) + b);
    auto sum2 = hn::Load(d32i, data.Totals(2) + b);
    auto sum3 = hn::Load(d32i, data.Totals(3) + b);
    auto weights = hn::Load(d32i, data.Totals(4) + b);
    for (std::ptrdiff_t k = 0; k < kPairs; ++k) {
      const auto weight = hn::BitCast(d16, hn::Load(d32, data.pairs + k * data.blocks + b));
      sum0 = AddProducts(sum0, load(data.Samples(0) + b + k), weight);
      sum1 = AddProducts(sum1, load(data.Samples(1) + b + k), weight);
      sum2 = AddProducts(sum2, load(data.Samples(2) + b + k), weight);
      sum3 = AddProducts(sum3, load(data.Samples(3) + b + k), weight);
      weights = AddProducts(weights, weight, ones);
    }
    hn::Store(sum0, d32i, data.Totals(0) + b);
    hn::Store(sum1, d32i, data.Totals(1) + b);
    hn::Store(sum2, d32i, data.Totals(2) + b);
    hn::Store(sum3, d32i, data.Totals(3) + b);
    hn::Store(weights, d32i, data.Totals(4) + b);
  }
}

#endif  // HWY_TARGET <= HWY_AVX3

#endif  // HWY_TARGET == HWY_SCALAR

std::uint64_t LoadBytesImpl(const std::uint8_t* from, std::size_t bytes) {
  const D8 d8;
  const std::size_t lanes = hn::Lanes(d8);
  auto even = hn::Zero(d8);
  auto odd = hn::Zero(d8);
  for (std::size_t i = 0; i < bytes; i += 2 * lanes) {
    even = hn::Xor(even, hn::Load(d8, from + i));
    odd = hn::Xor(odd, hn::Load(d8, from + i + lanes));
  }
  return hn::GetLane(hn::Xor(even, odd));
}

void StoreBytesImpl(std::uint8_t* to, std::size_t bytes) {
  const D8 d8;
  const auto value = hn::Set(d8, 7);
  for (std::size_t i = 0; i < bytes; i += hn::Lanes(d8)) hn::Store(value, d8, to + i);
}

void CopyBytesImpl(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  const D8 d8;
  for (std::size_t i = 0; i < bytes; i += hn::Lanes(d8)) hn::Store(hn::Load(d8, from + i), d8, to + i);
}

}  // namespace mirellon::bench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace mirellon::bench {

HWY_EXPORT(AbsoluteDifferencesImpl);
HWY_EXPORT(BoxSumsImpl);
HWY_EXPORT(LookUpFromMemoryImpl);
HWY_EXPORT(LookUpFromRegistersImpl);
HWY_EXPORT(AccumulateImpl);
HWY_EXPORT(LoadBytesImpl);
HWY_EXPORT(StoreBytesImpl);
HWY_EXPORT(CopyBytesImpl);

void AbsoluteDifferences(const StepData& data) {
  HWY_DYNAMIC_DISPATCH(AbsoluteDifferencesImpl)(data);
}
void BoxSums(const StepData& data) {
  HWY_DYNAMIC_DISPATCH(BoxSumsImpl)(data);
}
void LookUpFromMemory(const StepData& data) {
  HWY_DYNAMIC_DISPATCH(LookUpFromMemoryImpl)(data);
}
bool LookUpFromRegisters(const StepData& data) {
  return HWY_DYNAMIC_DISPATCH(LookUpFromRegistersImpl)(data);
}
void Accumulate(const StepData& data) {
  HWY_DYNAMIC_DISPATCH(AccumulateImpl)(data);
}
std::uint64_t LoadBytes(const std::uint8_t* from, std::size_t bytes) {
  return HWY_DYNAMIC_DISPATCH(LoadBytesImpl)(from, bytes);
}
void StoreBytes(std::uint8_t* to, std::size_t bytes) {
  HWY_DYNAMIC_DISPATCH(StoreBytesImpl)(to, bytes);
}
void CopyBytes(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes) {
  HWY_DYNAMIC_DISPATCH(CopyBytesImpl)(from, to, bytes);
}

}  // namespace mirellon::bench

#endif  // HWY_ONCE
