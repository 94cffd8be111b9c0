#include "kernel_steps.h"

#include <algorithm>

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel_steps.cpp"
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
  for (std::ptrdiff_t b = 0; b < data.blocks; b += 4) {
    std::uint64_t distances = 0;
    hwy::CopyBytes<sizeof distances>(data.distances + b, &distances);
    std::uint64_t weights = table[distances & 0xFFFFU];
    weights |= std::uint64_t{table[distances >> 16U & 0xFFFFU]} << 16U;
    weights |= std::uint64_t{table[distances >> 32U & 0xFFFFU]} << 32U;
    weights |= std::uint64_t{table[distances >> 48U]} << 48U;
    hwy::CopyBytes<sizeof weights>(&weights, data.weights + b);
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
  const std::ptrdiff_t pixels = 2 * data.blocks;
  for (std::ptrdiff_t k = 0; k < kPairs; ++k) {
    for (std::ptrdiff_t b = 0; b < data.blocks; ++b) {
      const std::uint32_t weight = data.pairs[k * data.blocks + b];
      const std::uint32_t first = weight & 0xFFFFU;
      const std::uint32_t second = weight >> 16U;
      data.totals[2 * pixels + b] += static_cast<std::int32_t>(first + second);
      for (std::ptrdiff_t x = 2 * b; x < 2 * b + 2; ++x) {
        const std::uint32_t upper = data.samples[2 * k + x];
        const std::uint32_t lower = data.samples[2 * k + x + pixels + 64];
        data.totals[x] += static_cast<std::int32_t>(first * (upper & 0xFFFFU) + second * (upper >> 16U));
        data.totals[x + pixels] +=
            static_cast<std::int32_t>(first * (lower & 0xFFFFU) + second * (lower >> 16U));
      }
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
  const auto difference = [](auto a, auto b) {
    return SumsOf2(hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a)));
  };
  for (std::ptrdiff_t b = 0; b < data.blocks; b += lanes) {
    const auto upper = difference(hn::Load(d8, data.upper + 2 * b), hn::LoadU(d8, data.upper2 + 2 * b));
    const auto lower = difference(hn::Load(d8, data.lower + 2 * b), hn::LoadU(d8, data.lower2 + 2 * b));
    hn::Store(hn::Add(upper, lower), d16, data.sums + b);
  }
}

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

// Sums of neighbouring 16-bit products on top of `sum`.
template <class V16, class V32>
HWY_INLINE V32 AddProducts(V32 sum, V16 a, V16 b) {
  const D32i d32;
  auto odd = hn::Zero(d32);
  const auto even = hn::ReorderWidenMulAccumulate(d32, a, b, sum, odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

template <int kUpper>
HWY_INLINE auto TwiceEach() {
  const D32 d32;
  HWY_ALIGN std::int32_t indices[hn::MaxLanes(D32())];
  const auto lanes = static_cast<std::int32_t>(hn::Lanes(d32));
  for (std::int32_t i = 0; i < lanes; ++i) indices[i] = (kUpper * lanes + i) / 2;
  return hn::SetTableIndices(d32, indices);
}

void AccumulateImpl(const StepData& data) {
  const D16i d16;
  const D32 d32;
  const D32i d32i;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d32));
  const std::ptrdiff_t pixels = 2 * data.blocks;
  const auto lowerHalf = TwiceEach<0>();
  const auto upperHalf = TwiceEach<1>();
  const auto ones = hn::Set(d16, 1);
  const auto load = [&](const std::uint32_t* from) { return hn::BitCast(d16, hn::LoadU(d32, from)); };
  for (std::ptrdiff_t b = 0; b < data.blocks; b += lanes) {
    std::int32_t* upper = data.totals + 2 * b;
    std::int32_t* lower = upper + pixels;
    std::int32_t* weights = data.totals + 2 * pixels + b;
    auto upper0 = hn::Load(d32i, upper);
    auto upper1 = hn::Load(d32i, upper + lanes);
    auto lower0 = hn::Load(d32i, lower);
    auto lower1 = hn::Load(d32i, lower + lanes);
    auto sum = hn::Load(d32i, weights);
    for (std::ptrdiff_t k = 0; k < kPairs; ++k) {
      const auto weight = hn::Load(d32, data.pairs + k * data.blocks + b);
      const auto weight0 = hn::BitCast(d16, hn::TableLookupLanes(weight, lowerHalf));
      const auto weight1 = hn::BitCast(d16, hn::TableLookupLanes(weight, upperHalf));
      const std::uint32_t* above = data.samples + 2 * k + 2 * b;
      const std::uint32_t* below = above + pixels + 64;
      upper0 = AddProducts(upper0, load(above), weight0);
      upper1 = AddProducts(upper1, load(above + lanes), weight1);
      lower0 = AddProducts(lower0, load(below), weight0);
      lower1 = AddProducts(lower1, load(below + lanes), weight1);
      sum = AddProducts(sum, hn::BitCast(d16, weight), ones);
    }
    hn::Store(upper0, d32i, upper);
    hn::Store(upper1, d32i, upper + lanes);
    hn::Store(lower0, d32i, lower);
    hn::Store(lower1, d32i, lower + lanes);
    hn::Store(sum, d32i, weights);
  }
}

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
