#include "picture/resample_rows.h"

#include <algorithm>

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/resample_rows.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace mirellon::picture::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::ptrdiff_t kComponents = 3;

template <std::size_t kTaps>
void AcrossPlain(const std::uint8_t* row, const AxisTaps<kTaps>& taps, float* to) {
  for (std::ptrdiff_t c = 0; c < kComponents; ++c) {
    float sum = 0.0F;
    for (std::size_t k = 0; k < kTaps; ++k) {
      const float sample = row[taps.index[k] * kComponents + c];
      sum = k == 0 ? taps.weight[0] * sample : sum + taps.weight[k] * sample;
    }
    to[c] = sum;
  }
}

#if HWY_TARGET == HWY_SCALAR

template <std::size_t kTaps>
void Across(const std::uint8_t* row, int /*width*/, const AxisTaps<kTaps>* columns, std::size_t count,
            float* to) {
  for (std::size_t i = 0; i < count; ++i, to += kComponents) AcrossPlain(row, columns[i], to);
}

#else

// A pixel's components fill a vector together with the next byte, which nobody needs; the last pixel of a row
// has none behind it.
template <std::size_t kTaps>
void Across(const std::uint8_t* row, int width, const AxisTaps<kTaps>* columns, std::size_t count,
            float* to) {
  const hn::FixedTag<float, 4> d;
  const hn::Rebind<std::int32_t, decltype(d)> whole;
  const hn::Rebind<std::uint8_t, decltype(d)> bytes;
  const auto pixel = [&](std::ptrdiff_t index) HWY_ATTR {
    return hn::ConvertTo(d, hn::PromoteTo(whole, hn::LoadU(bytes, row + index * kComponents)));
  };
  for (std::size_t i = 0; i < count; ++i, to += kComponents) {
    const AxisTaps<kTaps>& taps = columns[i];
    if (*std::max_element(taps.index.begin(), taps.index.end()) == width - 1) {
      AcrossPlain(row, taps, to);
      continue;
    }
    auto sum = hn::Mul(hn::Set(d, taps.weight[0]), pixel(taps.index[0]));
    for (std::size_t k = 1; k < kTaps; ++k) {
      sum = hn::Add(sum, hn::Mul(hn::Set(d, taps.weight[k]), pixel(taps.index[k])));
    }
    hn::StoreU(sum, d, to);
  }
}

#endif

template <std::size_t kTaps>
void Down(const std::array<const float*, kTaps>& rows, const std::array<float, kTaps>& weights,
          std::uint8_t* to, std::size_t count) {
  const hn::ScalableTag<float> d;
  const hn::Rebind<std::int32_t, decltype(d)> whole;
  const hn::Rebind<std::uint8_t, decltype(d)> bytes;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    auto sum = hn::Mul(hn::Set(d, weights[0]), hn::LoadU(d, rows[0] + i));
    for (std::size_t k = 1; k < kTaps; ++k) {
      sum = hn::Add(sum, hn::Mul(hn::Set(d, weights[k]), hn::LoadU(d, rows[k] + i)));
    }
    const auto raised = hn::Add(sum, hn::Set(d, 0.5F));
    const auto held = hn::Min(hn::Max(raised, hn::Zero(d)), hn::Set(d, 255.0F));
    hn::StoreU(hn::DemoteTo(bytes, hn::ConvertTo(whole, held)), bytes, to + i);
  }
  for (; i < count; ++i) {
    float sum = weights[0] * rows[0][i];
    for (std::size_t k = 1; k < kTaps; ++k) sum = sum + weights[k] * rows[k][i];
    to[i] = static_cast<std::uint8_t>(static_cast<int>(std::min(std::max(sum + 0.5F, 0.0F), 255.0F)));
  }
}

void Across2(const std::uint8_t* row, int width, const AxisTaps<2>* columns, std::size_t count, float* to) {
  Across(row, width, columns, count, to);
}
void Across4(const std::uint8_t* row, int width, const AxisTaps<4>* columns, std::size_t count, float* to) {
  Across(row, width, columns, count, to);
}
void Down2(const std::array<const float*, 2>& rows, const std::array<float, 2>& weights, std::uint8_t* to,
           std::size_t count) {
  Down(rows, weights, to, count);
}
void Down4(const std::array<const float*, 4>& rows, const std::array<float, 4>& weights, std::uint8_t* to,
           std::size_t count) {
  Down(rows, weights, to, count);
}

}  // namespace mirellon::picture::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace mirellon::picture {

HWY_EXPORT(Across2);
HWY_EXPORT(Across4);
HWY_EXPORT(Down2);
HWY_EXPORT(Down4);

void ResampleAcross(const std::uint8_t* row, int width, const AxisTaps<2>* columns, std::size_t count,
                    float* to) {
  HWY_DYNAMIC_DISPATCH(Across2)(row, width, columns, count, to);
}
void ResampleAcross(const std::uint8_t* row, int width, const AxisTaps<4>* columns, std::size_t count,
                    float* to) {
  HWY_DYNAMIC_DISPATCH(Across4)(row, width, columns, count, to);
}
void ResampleDown(const std::array<const float*, 2>& rows, const std::array<float, 2>& weights,
                  std::uint8_t* to, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(Down2)(rows, weights, to, count);
}
void ResampleDown(const std::array<const float*, 4>& rows, const std::array<float, 4>& weights,
                  std::uint8_t* to, std::size_t count) {
  HWY_DYNAMIC_DISPATCH(Down4)(rows, weights, to, count);
}

}  // namespace mirellon::picture

#endif  // HWY_ONCE
