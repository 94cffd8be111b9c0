#include "engine/pyramid_plane.h"

#include <algorithm>
#include <array>
#include <functional>
#include <new>
#include <stdexcept>

#include "engine/parallel_for.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// Planes are worked on in strips of this many pixel pairs, whose intermediate rows fit the first-level cache
// and the stack.
constexpr int kStripPairs = 512;
using StripRow = std::array<float, std::size_t{2} * kStripPairs + kTaps>;

// ---- Rows of floats, kept as such or as samples ----

// A source has the size of a level and Part(x, y, count, scratch): where so many of a row's floats lie.
class FloatSource {
 public:
  explicit FloatSource(const FloatPlane& plane) : width(plane.width), height(plane.height), plane_(plane) {}
  const float* Part(int x, int y, int /*count*/, float* /*scratch*/) const { return plane_.Row(y) + x; }

  const int width;
  const int height;

 private:
  const FloatPlane& plane_;
};

template <typename T>
class SampleSource {
 public:
  explicit SampleSource(const SampleLevel& level)
      : width(level.picture->width), height(level.picture->height), level_(level) {}
  const float* Part(int x, int y, int count, float* scratch) const {
    const int step = level_.picture->components;
    const T* samples = Row<T>(*level_.picture, y) + std::ptrdiff_t{x} * step + level_.component;
    LoadFloats(samples, step, scratch, count);
    return scratch;
  }

  const int width;
  const int height;

 private:
  const SampleLevel level_;
};

template <class Source>
bool AtLeast5x5(const Source& source) {
  return source.width >= kTaps && source.height >= kTaps;
}

// Calls rows(first, end) for bands of rows that cover 0 to height, on several threads where it is worth it.
template <typename F>
void ForBands(std::uint32_t threads, int width, int height, F rows) {
  constexpr int kBandRows = 64;
  constexpr std::int64_t kLeastPixels = 1 << 14;
  const bool small = std::int64_t{width} * height < kLeastPixels;
  if (threads <= 1 || small) return rows(0, height);
  const auto band = [&](int i, std::uint32_t) { rows(i * kBandRows, std::min(height, (i + 1) * kBandRows)); };
  ParallelFor(threads, (height + kBandRows - 1) / kBandRows, std::ref(band));  // a copy would ask for memory
}

// ---- Reduce ----

int ReduceStart(int position, int length) {
  return std::min(std::max(0, 2 * position - 2), length - kTaps);
}

template <class Source>
float ReducePixel(const Source& source, int x, int y) {
  const int left = ReduceStart(x, source.width);
  const int top = ReduceStart(y, source.height);
  std::array<float, kTaps> scratch;
  float sum = 0.0F;
  for (int r = 0; r < kTaps; ++r) {
    const float* row = source.Part(left, top + r, kTaps, scratch.data());
    const KernelRow& kernel = kPyramidKernel[static_cast<std::size_t>(r)];
    for (std::size_t c = 0; c < kTaps; ++c) sum += kernel[c] * row[c];
  }
  return sum;
}

// A piece of a source row with its even and odd columns apart, so that neighbouring destination pixels read
// neighbouring samples.
struct SplitRow {
  std::array<float, kStripPairs + 2> even;
  std::array<float, kStripPairs + 2> odd;

  // For windows of `count` destination pixels, which see 2 count + 3 samples.
  void Load(const float* samples, int count) {
    SplitColumns(samples, even.data(), odd.data(), count + 1);
    const auto last = static_cast<std::size_t>(count) + 1;
    even[last] = samples[2 * last];
  }
};

// Rows [firstRow, endRow) of destination columns [first, first + count), all with windows that need no moving
// in x: the window of the first one begins at source column 2 first - 2.
template <class Source>
void ReduceStrip(const Source& source, FloatPlane& destination, int first, int count, int firstRow,
                 int endRow) {
  std::array<SplitRow, kTaps> split;  // source row y lies in split[y % 5]; windows only ever move down
  StripRow scratch;
  int loaded = ReduceStart(firstRow, source.height);
  for (int y = firstRow; y < endRow; ++y) {
    const int top = ReduceStart(y, source.height);
    for (; loaded < top + kTaps; ++loaded) {
      const float* samples = source.Part(2 * first - 2, loaded, 2 * count + 3, scratch.data());
      split[static_cast<std::size_t>(loaded % kTaps)].Load(samples, count);
    }
    ReduceWindow window{};
    for (std::size_t r = 0; r < kTaps; ++r) {
      const SplitRow& row = split[(static_cast<std::size_t>(top) + r) % kTaps];
      window.even[r] = row.even.data();
      window.odd[r] = row.odd.data();
    }
    ReduceRow(window, destination.Row(y) + first, count);
  }
}

template <class Source>
void Reduce(const Source& source, FloatPlane& destination, std::uint32_t threads) {
  if (!destination.AtLeast5x5() || !AtLeast5x5(source)) return;
  const int plainEnd = std::clamp((source.width - 3) / 2 + 1, 1, destination.width);
  ForBands(threads, destination.width, destination.height, [&](int firstRow, int endRow) {
    for (int x = 1; x < plainEnd; x += kStripPairs) {
      ReduceStrip(source, destination, x, std::min(kStripPairs, plainEnd - x), firstRow, endRow);
    }
    for (int y = firstRow; y < endRow; ++y) {
      float* row = destination.Row(y);
      row[0] = ReducePixel(source, 0, y);
      for (int x = plainEnd; x < destination.width; ++x) row[x] = ReducePixel(source, x, y);
    }
  });
}

// ---- Expand ----

// The part of a 5-tap window that reads the coarse plane: even positions from `start` below `end`, the first
// tap belonging to `origin`.
struct ExpandSpan {
  int origin;
  int start;
  int end;
};

ExpandSpan ExpandSpanAt(int position, int fineLength, int coarseLength) {
  const int origin = std::min(position > 2 ? position - 2 : 0, fineLength - kTaps);
  return {origin, origin + origin % 2, std::min(2 * coarseLength, origin + kTaps)};
}

struct FineSize {
  int width;
  int height;
};

float ExpandPixel(const FloatPlane& coarse, const FineSize& fine, int x, const ExpandSpan& rows) {
  const ExpandSpan columns = ExpandSpanAt(x, fine.width, coarse.width);
  float sum = 0.0F;
  for (int r = rows.start; r < rows.end; r += 2) {
    const KernelRow& kernel = kPyramidKernel[static_cast<std::size_t>(r - rows.origin)];
    for (int q = columns.start; q < columns.end; q += 2) {
      sum += coarse.Row(r / 2)[q / 2] * kernel[static_cast<std::size_t>(q - columns.origin)];
    }
  }
  return sum * 4.0F;
}

// A run of fine columns that are expanded alike: either single ones near the edges, or pairs (2j, 2j + 1)
// whose windows need neither moving nor cutting.
struct Run {
  int x;
  int count;
  bool plain;
};

// Calls use(run) for runs that cover the fine width, from left to right.
template <typename F>
void ForEachRun(int fineWidth, int coarseWidth, F use) {
  const int plainEnd = std::max(1, std::min((fineWidth - 4) / 2 + 1, coarseWidth - 1));
  use(Run{0, 2, false});
  for (int j = 1; j < plainEnd; j += kStripPairs) {
    use(Run{2 * j, 2 * std::min(kStripPairs, plainEnd - j), true});
  }
  use(Run{2 * plainEnd, fineWidth - 2 * plainEnd, false});
}

// The expanded pixels of a run of row y.
void ExpandRun(const FloatPlane& coarse, const FineSize& fine, const Run& run, int y, float* expanded) {
  const ExpandSpan rows = ExpandSpanAt(y, fine.height, coarse.height);
  if (!run.plain) {
    for (int i = 0; i < run.count; ++i) expanded[i] = ExpandPixel(coarse, fine, run.x + i, rows);
    return;
  }
  ExpandWindow window;
  for (int r = rows.start; r < rows.end; r += 2) {
    const auto i = static_cast<std::size_t>(window.rows++);
    window.coarse[i] = coarse.Row(r / 2) + run.x / 2;
    window.kernelRow[i] = r - rows.origin;
  }
  ExpandRow(window, expanded, run.count / 2);
}

// Rebuilds rows [firstRow, endRow) and hands each run's floats to put(run, y, values).
template <class Source, typename F>
void RebuildRows(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor, const Source& gauss,
                 int firstRow, int endRow, F put) {
  StripRow expanded;
  StripRow values;
  StripRow scratch;
  const FineSize fine{gauss.width, gauss.height};
  for (int y = firstRow; y < endRow; ++y) {
    ForEachRun(fine.width, oldCoarse.width, [&](const Run& run) {
      ExpandRun(oldCoarse, fine, run, y, expanded.data());
      ExpandRun(newCoarse, fine, run, y, values.data());
      const float* from = gauss.Part(run.x, y, run.count, scratch.data());
      RebuildRow(from, expanded.data(), factor, values.data(), run.count);
      put(run, y, values.data());
    });
  }
}

template <typename T>
void RebuildSamples(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor,
                    const SampleLevel& level, Rounding rounding, SBxPicBuf& rebuilt, std::uint32_t threads) {
  const SampleSource<T> gauss(level);
  if (!AtLeast5x5(gauss)) return;
  const auto put = [&](const Run& run, int y, const float* values) {
    T* samples = Row<T>(rebuilt, y) + std::ptrdiff_t{run.x} * rebuilt.components + level.component;
    StoreFloats(values, rounding, samples, rebuilt.components, run.count);
  };
  ForBands(threads, gauss.width, gauss.height, [&](int firstRow, int endRow) {
    RebuildRows(oldCoarse, newCoarse, factor, gauss, firstRow, endRow, put);
  });
}

}  // namespace

bool FloatPlane::Allocate(int planeWidth, int planeHeight) {
  Release();
  if (planeWidth < 0 || planeHeight < 0) return true;
  try {
    samples.assign(static_cast<std::size_t>(planeWidth) * static_cast<std::size_t>(planeHeight), 0.0F);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (const std::length_error&) {
    return true;
  }
  width = planeWidth;
  height = planeHeight;
  return false;
}

void FloatPlane::Release() {
  std::vector<float>().swap(samples);
  width = 0;
  height = 0;
}

void Reduce5x5(const FloatPlane& source, FloatPlane& destination, std::uint32_t threads) {
  Reduce(FloatSource(source), destination, threads);
}

void Reduce5x5(const SampleLevel& source, FloatPlane& destination, std::uint32_t threads) {
  if (source.picture->bitsPerComponent == 8) {
    Reduce(SampleSource<std::uint8_t>(source), destination, threads);
  } else {
    Reduce(SampleSource<std::uint16_t>(source), destination, threads);
  }
}

void SubtractExpanded5x5(const FloatPlane& coarse, const FloatPlane& gauss, FloatPlane& detail) {
  if (!gauss.AtLeast5x5()) return;
  StripRow values;
  for (int y = 0; y < gauss.height; ++y) {
    ForEachRun(gauss.width, coarse.width, [&](const Run& run) {
      ExpandRun(coarse, {gauss.width, gauss.height}, run, y, values.data());
      SubtractRow(gauss.Row(y) + run.x, values.data(), run.count);
      std::copy_n(values.data(), run.count, detail.Row(y) + run.x);
    });
  }
}

void AddExpanded5x5(const FloatPlane& coarse, const FloatPlane& detail, float factor, FloatPlane& gauss) {
  if (!gauss.AtLeast5x5()) return;
  StripRow values;
  for (int y = 0; y < gauss.height; ++y) {
    ForEachRun(gauss.width, coarse.width, [&](const Run& run) {
      ExpandRun(coarse, {gauss.width, gauss.height}, run, y, values.data());
      AddScaledRow(detail.Row(y) + run.x, factor, values.data(), run.count);
      std::copy_n(values.data(), run.count, gauss.Row(y) + run.x);
    });
  }
}

void Rebuild5x5(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor,
                const FloatPlane& gauss, FloatPlane& rebuilt, std::uint32_t threads) {
  if (!gauss.AtLeast5x5()) return;
  const auto put = [&rebuilt](const Run& run, int y, const float* values) {
    std::copy_n(values, run.count, rebuilt.Row(y) + run.x);
  };
  ForBands(threads, gauss.width, gauss.height, [&](int firstRow, int endRow) {
    RebuildRows(oldCoarse, newCoarse, factor, FloatSource(gauss), firstRow, endRow, put);
  });
}

void Rebuild5x5(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor,
                const SampleLevel& gauss, Rounding rounding, SBxPicBuf& rebuilt, std::uint32_t threads) {
  if (gauss.picture->bitsPerComponent == 8) {
    RebuildSamples<std::uint8_t>(oldCoarse, newCoarse, factor, gauss, rounding, rebuilt, threads);
  } else {
    RebuildSamples<std::uint16_t>(oldCoarse, newCoarse, factor, gauss, rounding, rebuilt, threads);
  }
}

}  // namespace mirellon::engine
