#include "engine/pyramid_rows.h"

#include <algorithm>

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/pyramid_rows.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using DF1 = hn::CappedTag<float, 1>;

// Calls step(tag, i) for whole vectors of floats, and for single ones at the end: rows are read and written
// neither before nor behind.
template <typename F>
HWY_INLINE void ForEachVector(int count, F step) {
  const DF d;
  const DF1 single;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  std::ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) step(d, i);
  for (; i < count; ++i) step(single, i);
}

void SplitColumnsImpl(const float* samples, float* even, float* odd, int pairs) {
  ForEachVector(pairs, [&](auto d, std::ptrdiff_t i) {
    hn::Vec<decltype(d)> evens;
    hn::Vec<decltype(d)> odds;
    hn::LoadInterleaved2(d, samples + 2 * i, evens, odds);
    hn::StoreU(evens, d, even + i);
    hn::StoreU(odds, d, odd + i);
  });
}

void ReduceRowImpl(const ReduceWindow& window, float* reduced, int count) {
  ForEachVector(count, [&](auto d, std::ptrdiff_t x) {
    auto sum = hn::Zero(d);
    const auto add = [&](float weight, const float* samples) {
      sum = hn::Add(sum, hn::Mul(hn::Set(d, weight), hn::LoadU(d, samples)));
    };
    for (std::size_t r = 0; r < kTaps; ++r) {
      const KernelRow& k = kPyramidKernel[r];
      add(k[0], window.even[r] + x);
      add(k[1], window.odd[r] + x);
      add(k[2], window.even[r] + x + 1);
      add(k[3], window.odd[r] + x + 1);
      add(k[4], window.even[r] + x + 2);
    }
    hn::StoreU(sum, d, reduced + x);
  });
}

void ExpandRowImpl(const ExpandWindow& window, float* expanded, int pairs) {
  ForEachVector(pairs, [&](auto d, std::ptrdiff_t j) {
    auto even = hn::Zero(d);
    auto odd = hn::Zero(d);
    for (std::size_t r = 0; r < static_cast<std::size_t>(window.rows); ++r) {
      const KernelRow& k = kPyramidKernel[static_cast<std::size_t>(window.kernelRow[r])];
      const float* coarse = window.coarse[r] + j;
      const auto left = hn::LoadU(d, coarse - 1);
      const auto middle = hn::LoadU(d, coarse);
      const auto right = hn::LoadU(d, coarse + 1);
      even = hn::Add(even, hn::Mul(left, hn::Set(d, k[0])));
      even = hn::Add(even, hn::Mul(middle, hn::Set(d, k[2])));
      even = hn::Add(even, hn::Mul(right, hn::Set(d, k[4])));
      odd = hn::Add(odd, hn::Mul(middle, hn::Set(d, k[1])));
      odd = hn::Add(odd, hn::Mul(right, hn::Set(d, k[3])));
    }
    const auto four = hn::Set(d, 4.0F);
    hn::StoreInterleaved2(hn::Mul(even, four), hn::Mul(odd, four), d, expanded + 2 * j);
  });
}

void SubtractRowImpl(const float* from, float* values, int count) {
  ForEachVector(count, [&](auto d, std::ptrdiff_t i) {
    hn::StoreU(hn::Sub(hn::LoadU(d, from + i), hn::LoadU(d, values + i)), d, values + i);
  });
}

void AddScaledRowImpl(const float* detail, float factor, float* values, int count) {
  ForEachVector(count, [&](auto d, std::ptrdiff_t i) {
    const auto scaled = hn::Mul(hn::Set(d, factor), hn::LoadU(d, detail + i));
    hn::StoreU(hn::Add(hn::LoadU(d, values + i), scaled), d, values + i);
  });
}

void RebuildRowImpl(const float* gauss, const float* expanded, float factor, float* values, int count) {
  ForEachVector(count, [&](auto d, std::ptrdiff_t i) {
    const auto detail = hn::Sub(hn::LoadU(d, gauss + i), hn::LoadU(d, expanded + i));
    const auto scaled = hn::Mul(hn::Set(d, factor), detail);
    hn::StoreU(hn::Add(hn::LoadU(d, values + i), scaled), d, values + i);
  });
}

// ---- Samples ----

template <class D, typename T>
HWY_INLINE hn::Vec<D> ToFloats(D d, const T* samples) {
  const hn::RebindToSigned<D> d32;
  return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(hn::Rebind<T, D>(), samples)));
}

// Samples apart are first brought together, a piece at a time.
constexpr int kPiece = 256;

template <typename T>
void LoadEvery3rd(const T* samples, float* values, int count) {
  const hn::ScalableTag<T> d;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  HWY_ALIGN T piece[kPiece];
  for (int first = 0; first < count; first += kPiece) {
    const int length = std::min(kPiece, count - first);
    const T* from = samples + std::ptrdiff_t{3} * first;
    std::ptrdiff_t x = 0;
    // A vector of triples ends two samples after its last first one, which the row's last triple may not
    // have.
    for (; x + lanes < length; x += lanes) {
      hn::Vec<decltype(d)> wanted;
      hn::Vec<decltype(d)> second;
      hn::Vec<decltype(d)> third;
      hn::LoadInterleaved3(d, from + 3 * x, wanted, second, third);
      hn::Store(wanted, d, piece + x);
    }
    for (; x < length; ++x) piece[x] = from[3 * x];
    ForEachVector(length, [&](auto df, std::ptrdiff_t i) {
      hn::StoreU(ToFloats(df, piece + i), df, values + first + i);
    });
  }
}

template <typename T>
void LoadFloatsAt(const T* samples, int step, float* values, int count) {
  if (step == 3) return LoadEvery3rd(samples, values, count);
  ForEachVector(count,
                [&](auto d, std::ptrdiff_t i) { hn::StoreU(ToFloats(d, samples + i), d, values + i); });
}

template <typename T, class D>
HWY_INLINE hn::Vec<D> Clamped(D d, hn::Vec<D> value, Rounding rounding) {
  const auto zero = hn::Zero(d);
  const auto largest = hn::Set(d, sizeof(T) == 1 ? 255.0F : 65535.0F);
  if (rounding == Rounding::kNearest) value = hn::Add(value, hn::Set(d, 0.5F));
  // The comparisons are written so that what is not a number falls where it should.
  if (sizeof(T) == 1) {
    const auto below = hn::IfThenElse(hn::Lt(value, largest), value, largest);
    return hn::IfThenElse(hn::Gt(below, zero), below, zero);
  }
  const auto above = hn::IfThenElse(hn::Gt(value, zero), value, zero);
  return hn::IfThenElse(hn::Lt(above, largest), above, largest);
}

template <typename T>
void ToSamples(const float* values, Rounding rounding, T* samples, int count) {
  ForEachVector(count, [&](auto d, std::ptrdiff_t i) {
    const hn::RebindToSigned<decltype(d)> d32;
    const hn::Rebind<T, decltype(d)> dT;
    const auto whole = hn::ConvertTo(d32, Clamped<T>(d, hn::LoadU(d, values + i), rounding));
    hn::StoreU(hn::DemoteTo(dT, whole), dT, samples + i);
  });
}

template <typename T>
void StoreEvery3rd(const float* values, Rounding rounding, T* samples, int count) {
  HWY_ALIGN T piece[kPiece];
  for (int first = 0; first < count; first += kPiece) {
    const int length = std::min(kPiece, count - first);
    ToSamples(values + first, rounding, piece, length);
    T* to = samples + std::ptrdiff_t{3} * first;
    for (std::ptrdiff_t x = 0; x < length; ++x) to[3 * x] = piece[x];
  }
}

template <typename T>
void StoreFloatsAt(const float* values, Rounding rounding, T* samples, int step, int count) {
  if (step == 3) return StoreEvery3rd(values, rounding, samples, count);
  ToSamples(values, rounding, samples, count);
}

// Dispatch goes by name, so each depth has its own.
void LoadFloats8(const std::uint8_t* samples, int step, float* values, int count) {
  LoadFloatsAt(samples, step, values, count);
}
void LoadFloats16(const std::uint16_t* samples, int step, float* values, int count) {
  LoadFloatsAt(samples, step, values, count);
}
void StoreFloats8(const float* values, Rounding rounding, std::uint8_t* samples, int step, int count) {
  StoreFloatsAt(values, rounding, samples, step, count);
}
void StoreFloats16(const float* values, Rounding rounding, std::uint16_t* samples, int step, int count) {
  StoreFloatsAt(values, rounding, samples, step, count);
}

}  // namespace mirellon::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace mirellon::engine {

HWY_EXPORT(SplitColumnsImpl);
HWY_EXPORT(ReduceRowImpl);
HWY_EXPORT(ExpandRowImpl);
HWY_EXPORT(SubtractRowImpl);
HWY_EXPORT(AddScaledRowImpl);
HWY_EXPORT(RebuildRowImpl);
HWY_EXPORT(LoadFloats8);
HWY_EXPORT(LoadFloats16);
HWY_EXPORT(StoreFloats8);
HWY_EXPORT(StoreFloats16);

void SplitColumns(const float* samples, float* even, float* odd, int pairs) {
  HWY_DYNAMIC_DISPATCH(SplitColumnsImpl)(samples, even, odd, pairs);
}
void ReduceRow(const ReduceWindow& window, float* reduced, int count) {
  HWY_DYNAMIC_DISPATCH(ReduceRowImpl)(window, reduced, count);
}
void ExpandRow(const ExpandWindow& window, float* expanded, int pairs) {
  HWY_DYNAMIC_DISPATCH(ExpandRowImpl)(window, expanded, pairs);
}
void SubtractRow(const float* from, float* values, int count) {
  HWY_DYNAMIC_DISPATCH(SubtractRowImpl)(from, values, count);
}
void AddScaledRow(const float* detail, float factor, float* values, int count) {
  HWY_DYNAMIC_DISPATCH(AddScaledRowImpl)(detail, factor, values, count);
}
void RebuildRow(const float* gauss, const float* expanded, float factor, float* values, int count) {
  HWY_DYNAMIC_DISPATCH(RebuildRowImpl)(gauss, expanded, factor, values, count);
}
void LoadFloats(const std::uint8_t* samples, int step, float* values, int count) {
  HWY_DYNAMIC_DISPATCH(LoadFloats8)(samples, step, values, count);
}
void LoadFloats(const std::uint16_t* samples, int step, float* values, int count) {
  HWY_DYNAMIC_DISPATCH(LoadFloats16)(samples, step, values, count);
}
void StoreFloats(const float* values, Rounding rounding, std::uint8_t* samples, int step, int count) {
  HWY_DYNAMIC_DISPATCH(StoreFloats8)(values, rounding, samples, step, count);
}
void StoreFloats(const float* values, Rounding rounding, std::uint16_t* samples, int step, int count) {
  HWY_DYNAMIC_DISPATCH(StoreFloats16)(values, rounding, samples, step, count);
}

}  // namespace mirellon::engine

#endif  // HWY_ONCE
