#include "picture/colour_convert.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/colour_convert.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace mirellon::picture::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Rows are worked on in strips whose planes stay in the first-level cache.
constexpr int kStrip = 1024;

template <typename T>
struct Strip {
  HWY_ALIGN std::array<T, kStrip> a;
  HWY_ALIGN std::array<T, kStrip> b;
  HWY_ALIGN std::array<T, kStrip> c;
};

// ---- Interleaved samples and planes ----

template <typename T>
void Split(const T* triples, T* a, T* b, T* c, std::ptrdiff_t pixels) {
  const hn::ScalableTag<T> d;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  std::ptrdiff_t x = 0;
  for (; x + lanes <= pixels; x += lanes) {
    hn::Vec<decltype(d)> first;
    hn::Vec<decltype(d)> second;
    hn::Vec<decltype(d)> third;
    hn::LoadInterleaved3(d, triples + 3 * x, first, second, third);
    hn::StoreU(first, d, a + x);
    hn::StoreU(second, d, b + x);
    hn::StoreU(third, d, c + x);
  }
  for (; x < pixels; ++x) {
    a[x] = triples[3 * x];
    b[x] = triples[3 * x + 1];
    c[x] = triples[3 * x + 2];
  }
}

template <typename T>
void Join(const T* a, const T* b, const T* c, T* triples, std::ptrdiff_t pixels) {
  const hn::ScalableTag<T> d;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  std::ptrdiff_t x = 0;
  for (; x + lanes <= pixels; x += lanes) {
    hn::StoreInterleaved3(hn::LoadU(d, a + x), hn::LoadU(d, b + x), hn::LoadU(d, c + x), d, triples + 3 * x);
  }
  for (; x < pixels; ++x) {
    triples[3 * x] = a[x];
    triples[3 * x + 1] = b[x];
    triples[3 * x + 2] = c[x];
  }
}

// ---- The formulas, on as many pixels as 32-bit lanes ----
//
// Everything fits 32 bits: a factor of 65536 and more leaves its whole part outside of the product, and where
// a sum could pass the largest number by one half, the half is added after the shift. Demoting clamps.

template <class D32>
HWY_INLINE hn::Vec<D32> Times(D32 d, std::int32_t factor, hn::Vec<D32> samples) {
  return hn::Mul(hn::Set(d, factor), samples);
}

template <class D32, typename T>
HWY_INLINE hn::Vec<D32> Promoted(D32 d, const T* samples) {
  return hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, D32>(), samples));
}

// (products + 32768) >> 16
template <class D32>
HWY_INLINE hn::Vec<D32> Rounded(D32 d, hn::Vec<D32> products) {
  return hn::ShiftRight<16>(hn::Add(products, hn::Set(d, 32768)));
}

// The same where 32768 more may be too much.
template <class D32>
HWY_INLINE hn::Vec<D32> RoundedAfter(D32 d, hn::Vec<D32> products) {
  return hn::Add(hn::ShiftRight<16>(products), hn::And(hn::ShiftRight<15>(products), hn::Set(d, 1)));
}

template <typename T>
inline constexpr std::int32_t kMiddle = sizeof(T) == 1 ? 128 : 32768;

// Below 2^32, not below 2^31.
template <class D32, typename T>
HWY_INLINE void StoreLuminance(D32 d, hn::Vec<D32> blue, hn::Vec<D32> green, hn::Vec<D32> red, T* y) {
  const hn::RebindToUnsigned<D32> unsignedTag;
  const auto times = [&](std::uint32_t factor, hn::Vec<D32> samples) {
    return hn::Mul(hn::Set(unsignedTag, factor), hn::BitCast(unsignedTag, samples));
  };
  const auto sum = hn::Add(hn::Add(times(19595, red), times(38470, green)),
                           hn::Add(times(7471, blue), hn::Set(unsignedTag, 32768)));
  const hn::Rebind<T, D32> samples;
  hn::StoreU(hn::DemoteTo(samples, hn::BitCast(d, hn::ShiftRight<16>(sum))), samples, y);
}

template <class D32, typename T>
HWY_INLINE void ToYuvAt(D32 d, const Strip<T>& bgr, std::ptrdiff_t x, T* y, T* u, T* v) {
  const auto blue = Promoted(d, bgr.a.data() + x);
  const auto green = Promoted(d, bgr.b.data() + x);
  const auto red = Promoted(d, bgr.c.data() + x);
  StoreLuminance(d, blue, green, red, y + x);
  const auto middle = hn::Set(d, kMiddle<T>);
  const auto uSum = hn::Add(hn::Add(Times(d, -11059, red), Times(d, -21709, green)), Times(d, 32768, blue));
  const auto vSum = hn::Add(hn::Add(Times(d, -27439, green), Times(d, -5329, blue)), Times(d, 32768, red));
  const hn::Rebind<T, D32> samples;
  hn::StoreU(hn::DemoteTo(samples, hn::Add(RoundedAfter(d, uSum), middle)), samples, u + x);
  hn::StoreU(hn::DemoteTo(samples, hn::Add(RoundedAfter(d, vSum), middle)), samples, v + x);
}

template <class D32, typename T>
HWY_INLINE void ToRgbAt(D32 d, const T* yRow, const T* uRow, const T* vRow, std::ptrdiff_t x, Strip<T>& bgr) {
  const auto middle = hn::Set(d, kMiddle<T>);
  const auto y = Promoted(d, yRow + x);
  const auto u = hn::Sub(Promoted(d, uRow + x), middle);
  const auto v = hn::Sub(Promoted(d, vRow + x), middle);
  const auto blue = hn::Add(hn::Add(y, u), Rounded(d, Times(d, 116130 - 65536, u)));
  const auto greenSum = hn::Add(Times(d, -22554, u), Times(d, 65536 - 46802, v));
  const auto green = hn::Add(hn::Sub(y, v), Rounded(d, greenSum));
  const auto red = hn::Add(hn::Add(y, v), Rounded(d, Times(d, 91881 - 65536, v)));
  const hn::Rebind<T, D32> samples;
  hn::StoreU(hn::DemoteTo(samples, blue), samples, bgr.a.data() + x);
  hn::StoreU(hn::DemoteTo(samples, green), samples, bgr.b.data() + x);
  hn::StoreU(hn::DemoteTo(samples, red), samples, bgr.c.data() + x);
}

// Calls step(tag, x) for whole vectors of 32-bit lanes, and for single ones at the end.
template <typename F>
HWY_INLINE void ForEachVector(std::ptrdiff_t pixels, F step) {
  const hn::ScalableTag<std::int32_t> d;
  const hn::CappedTag<std::int32_t, 1> single;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  std::ptrdiff_t x = 0;
  for (; x + lanes <= pixels; x += lanes) step(d, x);
  for (; x < pixels; ++x) step(single, x);
}

// ---- Rows ----

template <typename T>
void RgbToPlanes(const T* bgr, T* y, T* u, T* v, std::ptrdiff_t pixels) {
  Strip<T> strip;
  for (std::ptrdiff_t first = 0; first < pixels; first += kStrip) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kStrip, pixels - first);
    Split(bgr + 3 * first, strip.a.data(), strip.b.data(), strip.c.data(), count);
    ForEachVector(count,
                  [&](auto d, std::ptrdiff_t x) { ToYuvAt(d, strip, x, y + first, u + first, v + first); });
  }
}

template <typename T>
void PlanesToRgb(const T* y, const T* u, const T* v, T* bgr, std::ptrdiff_t pixels) {
  Strip<T> strip;
  for (std::ptrdiff_t first = 0; first < pixels; first += kStrip) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kStrip, pixels - first);
    ForEachVector(count,
                  [&](auto d, std::ptrdiff_t x) { ToRgbAt(d, y + first, u + first, v + first, x, strip); });
    Join(strip.a.data(), strip.b.data(), strip.c.data(), bgr + 3 * first, count);
  }
}

template <typename T>
void RgbToYuv(const T* bgr, T* yuv, std::ptrdiff_t pixels) {
  Strip<T> strip;
  for (std::ptrdiff_t first = 0; first < pixels; first += kStrip) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kStrip, pixels - first);
    RgbToPlanes(bgr + 3 * first, strip.a.data(), strip.b.data(), strip.c.data(), count);
    Join(strip.a.data(), strip.b.data(), strip.c.data(), yuv + 3 * first, count);
  }
}

template <typename T>
void YuvToRgb(const T* yuv, T* bgr, std::ptrdiff_t pixels) {
  Strip<T> strip;
  for (std::ptrdiff_t first = 0; first < pixels; first += kStrip) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kStrip, pixels - first);
    Split(yuv + 3 * first, strip.a.data(), strip.b.data(), strip.c.data(), count);
    PlanesToRgb(strip.a.data(), strip.b.data(), strip.c.data(), bgr + 3 * first, count);
  }
}

template <typename T>
void RgbToY(const T* bgr, T* grey, std::ptrdiff_t pixels) {
  Strip<T> strip;
  for (std::ptrdiff_t first = 0; first < pixels; first += kStrip) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kStrip, pixels - first);
    Split(bgr + 3 * first, strip.a.data(), strip.b.data(), strip.c.data(), count);
    ForEachVector(count, [&](auto d, std::ptrdiff_t x) {
      StoreLuminance(d, Promoted(d, strip.a.data() + x), Promoted(d, strip.b.data() + x),
                     Promoted(d, strip.c.data() + x), grey + first + x);
    });
  }
}

// Dispatch goes by name, so each depth has its own.
void RgbToPlanes8(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                  std::ptrdiff_t pixels) {
  RgbToPlanes(bgr, y, u, v, pixels);
}
void PlanesToRgb8(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v, std::uint8_t* bgr,
                  std::ptrdiff_t pixels) {
  PlanesToRgb(y, u, v, bgr, pixels);
}
void RgbToYuv8(const std::uint8_t* bgr, std::uint8_t* yuv, std::ptrdiff_t pixels) {
  RgbToYuv(bgr, yuv, pixels);
}
void YuvToRgb8(const std::uint8_t* yuv, std::uint8_t* bgr, std::ptrdiff_t pixels) {
  YuvToRgb(yuv, bgr, pixels);
}
void RgbToY8(const std::uint8_t* bgr, std::uint8_t* grey, std::ptrdiff_t pixels) {
  RgbToY(bgr, grey, pixels);
}
void RgbToPlanes16(const std::uint16_t* bgr, std::uint16_t* y, std::uint16_t* u, std::uint16_t* v,
                   std::ptrdiff_t pixels) {
  RgbToPlanes(bgr, y, u, v, pixels);
}
void PlanesToRgb16(const std::uint16_t* y, const std::uint16_t* u, const std::uint16_t* v, std::uint16_t* bgr,
                   std::ptrdiff_t pixels) {
  PlanesToRgb(y, u, v, bgr, pixels);
}
void RgbToYuv16(const std::uint16_t* bgr, std::uint16_t* yuv, std::ptrdiff_t pixels) {
  RgbToYuv(bgr, yuv, pixels);
}
void YuvToRgb16(const std::uint16_t* yuv, std::uint16_t* bgr, std::ptrdiff_t pixels) {
  YuvToRgb(yuv, bgr, pixels);
}
void RgbToY16(const std::uint16_t* bgr, std::uint16_t* grey, std::ptrdiff_t pixels) {
  RgbToY(bgr, grey, pixels);
}

}  // namespace mirellon::picture::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace mirellon::picture {

HWY_EXPORT(RgbToPlanes8);
HWY_EXPORT(PlanesToRgb8);
HWY_EXPORT(RgbToYuv8);
HWY_EXPORT(YuvToRgb8);
HWY_EXPORT(RgbToY8);
HWY_EXPORT(RgbToPlanes16);
HWY_EXPORT(PlanesToRgb16);
HWY_EXPORT(RgbToYuv16);
HWY_EXPORT(YuvToRgb16);
HWY_EXPORT(RgbToY16);

void ConvertRowRGBtoPlanes(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                           int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToPlanes8)(bgr, y, u, v, pixels);
}
void ConvertRowPlanesToRGB(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v,
                           std::uint8_t* bgr, int pixels) {
  HWY_DYNAMIC_DISPATCH(PlanesToRgb8)(y, u, v, bgr, pixels);
}
void ConvertRowRGBtoYUV(const std::uint8_t* bgr, std::uint8_t* yuv, int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToYuv8)(bgr, yuv, pixels);
}
void ConvertRowYUVtoRGB(const std::uint8_t* yuv, std::uint8_t* bgr, int pixels) {
  HWY_DYNAMIC_DISPATCH(YuvToRgb8)(yuv, bgr, pixels);
}
void ConvertRowRGBtoY(const std::uint8_t* bgr, std::uint8_t* grey, int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToY8)(bgr, grey, pixels);
}
void ConvertRowRGBtoPlanes(const std::uint16_t* bgr, std::uint16_t* y, std::uint16_t* u, std::uint16_t* v,
                           int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToPlanes16)(bgr, y, u, v, pixels);
}
void ConvertRowPlanesToRGB(const std::uint16_t* y, const std::uint16_t* u, const std::uint16_t* v,
                           std::uint16_t* bgr, int pixels) {
  HWY_DYNAMIC_DISPATCH(PlanesToRgb16)(y, u, v, bgr, pixels);
}
void ConvertRowRGBtoYUV(const std::uint16_t* bgr, std::uint16_t* yuv, int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToYuv16)(bgr, yuv, pixels);
}
void ConvertRowYUVtoRGB(const std::uint16_t* yuv, std::uint16_t* bgr, int pixels) {
  HWY_DYNAMIC_DISPATCH(YuvToRgb16)(yuv, bgr, pixels);
}
void ConvertRowRGBtoY(const std::uint16_t* bgr, std::uint16_t* grey, int pixels) {
  HWY_DYNAMIC_DISPATCH(RgbToY16)(bgr, grey, pixels);
}

}  // namespace mirellon::picture

#endif  // HWY_ONCE
