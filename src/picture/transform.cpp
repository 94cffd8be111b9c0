// The resamplers. An upright mapping, as a view uses it, takes the way by rows: positions and weights are
// computed once a column, and a row of the source that several rows of the destination need is resampled
// across once. Every other mapping takes the way by pixels. Both do the same sums in the same order, so their
// results are equal to the bit.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <vector>

#include "picture/pic_buf.h"
#include "picture/pic_buf_api.h"
#include "picture/pic_map.h"
#include "picture/resample_rows.h"

namespace mirellon::picture {

namespace {

// False for what is not a number, too.
bool Inside(double position, int length) {
  return position >= 0.0 && position < length;
}

std::array<float, 1> Weights(float /*fraction*/, std::array<float, 1> /*taps*/) {
  return {1.0F};
}

std::array<float, 2> Weights(float fraction, std::array<float, 2> /*taps*/) {
  return {1.0F - fraction, fraction};
}

std::array<float, 4> Weights(float f, std::array<float, 4> /*taps*/) {
  return {((-0.5F * f + 1.0F) * f - 0.5F) * f, (1.5F * f - 2.5F) * f * f + 1.0F,
          ((-1.5F * f + 2.0F) * f + 0.5F) * f, (0.5F * f - 0.5F) * f * f};
}

// For a position inside the picture.
template <std::size_t kTaps>
AxisTaps<kTaps> TapsAt(double position, int length) {
  // One tap: the sample whose pixel holds the position; else the samples around it, whose centres count.
  const double centred = kTaps == 1 ? position : position - 0.5;
  const double floored = std::floor(centred);
  AxisTaps<kTaps> taps;
  taps.weight = Weights(static_cast<float>(centred - floored), std::array<float, kTaps>{});
  const int first = static_cast<int>(floored) - (static_cast<int>(kTaps) - 1) / 2;
  for (std::size_t k = 0; k < kTaps; ++k) {
    taps.index[k] = std::clamp(first + static_cast<int>(k), 0, length - 1);
  }
  return taps;
}

template <typename T>
T Rounded(float value) {
  constexpr auto kLargest = static_cast<float>(std::numeric_limits<T>::max());
  const float raised = value + 0.5F;
  const float above = raised > 0.0F ? raised : 0.0F;
  return static_cast<T>(static_cast<int>(above < kLargest ? above : kLargest));
}

// One component of one source row, across.
template <std::size_t kTaps, typename T>
float Across(const T* row, const AxisTaps<kTaps>& taps, std::size_t components, std::size_t component) {
  float sum = 0.0F;
  for (std::size_t k = 0; k < kTaps; ++k) {
    const float sample = row[static_cast<std::size_t>(taps.index[k]) * components + component];
    sum = k == 0 ? taps.weight[0] * sample : sum + taps.weight[k] * sample;
  }
  return sum;
}

// ---- By pixels ----

template <std::size_t kTaps, typename T, std::size_t kComponents>
void ResampleByPixels(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  for (int y = 0; y < destination.height; ++y) {
    T* to = Row<T>(destination, y);
    for (int x = 0; x < destination.width; ++x, to += kComponents) {
      double sourceX = 0.0;
      double sourceY = 0.0;
      map.MapPointDstToSrc(&sourceX, &sourceY, x, y);
      if (!Inside(sourceX, source.width) || !Inside(sourceY, source.height)) continue;
      const AxisTaps<kTaps> columns = TapsAt<kTaps>(sourceX, source.width);
      const AxisTaps<kTaps> rows = TapsAt<kTaps>(sourceY, source.height);
      for (std::size_t c = 0; c < kComponents; ++c) {
        float sum = 0.0F;
        for (std::size_t k = 0; k < kTaps; ++k) {
          const float across = Across(Row<T>(source, rows.index[k]), columns, kComponents, c);
          sum = k == 0 ? rows.weight[0] * across : sum + rows.weight[k] * across;
        }
        to[c] = Rounded<T>(sum);
      }
    }
  }
}

// ---- By rows ----

// The destination columns that show the source, a run without gaps.
template <std::size_t kTaps>
struct Columns {
  int first = 0;
  std::vector<AxisTaps<kTaps>> taps;
};

template <std::size_t kTaps>
Columns<kTaps> ColumnsOf(const SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  Columns<kTaps> columns;
  for (int x = 0; x < destination.width; ++x) {
    double sourceX = 0.0;
    double sourceY = 0.0;
    map.MapPointDstToSrc(&sourceX, &sourceY, x, 0);
    if (!Inside(sourceX, source.width)) continue;
    if (columns.taps.empty()) columns.first = x;
    columns.taps.push_back(TapsAt<kTaps>(sourceX, source.width));
  }
  return columns;
}

// The source rows that the current destination row needs, resampled across. As they are neighbours, row y
// lies in slot y % kTaps.
template <std::size_t kTaps, typename T, std::size_t kComponents>
class RowCache {
 public:
  // Throws std::bad_alloc. There is at least one column.
  RowCache(const SBxPicBuf& source, const Columns<kTaps>& columns) : source_(source), columns_(columns) {
    held_.fill(-1);
    for (auto& row : rows_) row.resize(columns.taps.size() * kComponents + kLanes);
    if constexpr (kInVectors) return;
    firstSample_ = static_cast<std::size_t>(columns.taps.front().index.front()) * kComponents;
    const auto last = static_cast<std::size_t>(columns.taps.back().index.back());
    samples_.resize((last + 1) * kComponents - firstSample_ + kLanes);
  }

  const float* Get(int y) {
    const std::size_t slot = static_cast<std::size_t>(y) % kTaps;
    if (held_[slot] != y) {
      held_[slot] = y;
      Fill(Row<T>(source_, y), rows_[slot].data());
    }
    return rows_[slot].data();
  }

 private:
  // A pixel's components are worked on as so many at once, which fits one vector; what the surplus lanes
  // write is overwritten by the next pixel.
  static constexpr std::size_t kLanes = kComponents == 1 ? 1 : 4;

  static constexpr bool kInVectors = sizeof(T) == 1 && kComponents == 3;

  void Fill(const T* row, float* to) {
    if constexpr (kInVectors) {
      ResampleAcross(row, source_.width, columns_.taps.data(), columns_.taps.size(), to);
    } else {
      FillPlain(row + firstSample_, to);
    }
  }

  void FillPlain(const T* from, float* to) {
    const std::size_t count = samples_.size() - kLanes;
    for (std::size_t i = 0; i < count; ++i) samples_[i] = from[i];
    for (const AxisTaps<kTaps>& taps : columns_.taps) {
      std::array<float, kLanes> sums{};
      for (std::size_t k = 0; k < kTaps; ++k) {
        const float* pixel = &samples_[static_cast<std::size_t>(taps.index[k]) * kComponents - firstSample_];
        for (std::size_t c = 0; c < kLanes; ++c) {
          sums[c] = k == 0 ? taps.weight[0] * pixel[c] : sums[c] + taps.weight[k] * pixel[c];
        }
      }
      std::copy(sums.begin(), sums.end(), to);
      to += kComponents;
    }
  }

  const SBxPicBuf& source_;
  const Columns<kTaps>& columns_;
  std::size_t firstSample_ = 0;
  std::vector<float> samples_;  // the part of a source row that the columns read
  std::array<int, kTaps> held_{};
  std::array<std::vector<float>, kTaps> rows_;
};

template <std::size_t kTaps, typename T>
void Down(const std::array<const float*, kTaps>& rows, const std::array<float, kTaps>& weights, T* to,
          std::size_t count) {
  if constexpr (sizeof(T) == 1) return ResampleDown(rows, weights, to, count);
  for (std::size_t i = 0; i < count; ++i) {
    float sum = weights[0] * rows[0][i];
    for (std::size_t k = 1; k < kTaps; ++k) sum = sum + weights[k] * rows[k][i];
    to[i] = Rounded<T>(sum);
  }
}

// Calls draw(y, taps) for every destination row that shows the source.
template <std::size_t kTaps, typename Draw>
void ForEachRow(const SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map, Draw draw) {
  for (int y = 0; y < destination.height; ++y) {
    double sourceX = 0.0;
    double sourceY = 0.0;
    map.MapPointDstToSrc(&sourceX, &sourceY, 0, y);
    if (Inside(sourceY, source.height)) draw(y, TapsAt<kTaps>(sourceY, source.height));
  }
}

template <std::size_t kTaps, typename T, std::size_t kComponents>
void DrawInterpolated(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map,
                      const Columns<kTaps>& columns) {
  RowCache<kTaps, T, kComponents> cache(source, columns);
  ForEachRow<kTaps>(destination, source, map, [&](int y, const AxisTaps<kTaps>& taps) {
    std::array<const float*, kTaps> rows;
    for (std::size_t k = 0; k < kTaps; ++k) rows[k] = cache.Get(taps.index[k]);
    Down(rows, taps.weight, Row<T>(destination, y) + static_cast<std::size_t>(columns.first) * kComponents,
         columns.taps.size() * kComponents);
  });
}

template <typename T, std::size_t kComponents>
void DrawNearest(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map,
                 const Columns<1>& columns) {
  ForEachRow<1>(destination, source, map, [&](int y, const AxisTaps<1>& row) {
    const T* from = Row<T>(source, row.index[0]);
    T* to = Row<T>(destination, y) + static_cast<std::size_t>(columns.first) * kComponents;
    for (const AxisTaps<1>& column : columns.taps) {
      const T* pixel = from + static_cast<std::size_t>(column.index[0]) * kComponents;
      for (std::size_t c = 0; c < kComponents; ++c) to[c] = pixel[c];
      to += kComponents;
    }
  });
}

// Throws std::bad_alloc, before anything is drawn.
template <std::size_t kTaps, typename T, std::size_t kComponents>
void ResampleByRows(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  const Columns<kTaps> columns = ColumnsOf<kTaps>(destination, source, map);
  if (columns.taps.empty()) return;
  if constexpr (kTaps == 1) {
    DrawNearest<T, kComponents>(destination, source, map, columns);
  } else {
    DrawInterpolated<kTaps, T, kComponents>(destination, source, map, columns);
  }
}

// ---- The choice ----

template <std::size_t kTaps, typename T, std::size_t kComponents>
void ResampleEitherWay(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  if (map.Upright()) {
    try {
      return ResampleByRows<kTaps, T, kComponents>(destination, source, map);
    } catch (const std::bad_alloc&) {  // nothing has been drawn yet, and the other way needs no memory
    }
  }
  ResampleByPixels<kTaps, T, kComponents>(destination, source, map);
}

template <std::size_t kTaps, typename T>
void ResampleDepth(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  if (source.components == 1) ResampleEitherWay<kTaps, T, 1>(destination, source, map);
  if (source.components == 3) ResampleEitherWay<kTaps, T, 3>(destination, source, map);
}

template <std::size_t kTaps>
void Resample(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map) {
  const bool fit = source.samples != nullptr && destination.samples != nullptr &&
                   source.samples != destination.samples && source.components == destination.components &&
                   source.bitsPerComponent == destination.bitsPerComponent;
  if (!fit) return;
  if (source.bitsPerComponent == 8) ResampleDepth<kTaps, std::uint8_t>(destination, source, map);
  if (source.bitsPerComponent == 16) ResampleDepth<kTaps, std::uint16_t>(destination, source, map);
}

}  // namespace

void CBxPicBufAPI::TransformConstantFast(SBxPicBuf& destination, const SBxPicBuf& source,
                                         const CBxPicMap& map) {
  Resample<1>(destination, source, map);
}

void CBxPicBufAPI::TransformBilinearFast(SBxPicBuf& destination, const SBxPicBuf& source,
                                         const CBxPicMap& map) {
  Resample<2>(destination, source, map);
}

void CBxPicBufAPI::TransformBicubicFast(SBxPicBuf& destination, const SBxPicBuf& source,
                                        const CBxPicMap& map) {
  Resample<4>(destination, source, map);
}

}  // namespace mirellon::picture
