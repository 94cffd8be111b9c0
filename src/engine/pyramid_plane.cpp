#include "engine/pyramid_plane.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

namespace mirellon::engine {

namespace {

constexpr int kTaps = 5;
using Kernel = std::array<std::array<float, kTaps>, kTaps>;

constexpr Kernel MakeKernel() {
  constexpr std::array<float, kTaps> kWeights = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};
  Kernel kernel{};
  for (std::size_t r = 0; r < kTaps; ++r) {
    for (std::size_t c = 0; c < kTaps; ++c) kernel[r][c] = kWeights[r] * kWeights[c];
  }
  return kernel;
}

constexpr Kernel kKernel = MakeKernel();

const std::array<float, kTaps>& KernelRow(int row) {
  return kKernel[static_cast<std::size_t>(row)];
}

// Planes are worked on in strips of this many pixel pairs, whose intermediate rows fit the first-level cache
// and the stack.
constexpr int kStripPairs = 512;
using StripRow = std::array<float, kStripPairs>;

// ---- Reduce ----

int ReduceStart(int position, int length) {
  return std::min(std::max(0, 2 * position - 2), length - kTaps);
}

float ReducePixel(const FloatPlane& source, int x, int y) {
  const int left = ReduceStart(x, source.width);
  const int top = ReduceStart(y, source.height);
  float sum = 0.0F;
  for (int r = 0; r < kTaps; ++r) {
    const float* row = source.Row(top + r) + left;
    for (std::size_t c = 0; c < kTaps; ++c) sum += KernelRow(r)[c] * row[c];
  }
  return sum;
}

// A piece of a source row with its even and odd columns apart, so that neighbouring destination pixels read
// neighbouring samples.
struct SplitRow {
  std::array<float, kStripPairs + 2> even;
  std::array<float, kStripPairs + 2> odd;

  void Load(const float* samples, int pairs) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(pairs); ++i) {
      even[i] = samples[2 * i];
      odd[i] = samples[2 * i + 1];
    }
  }
};

void AddReducedRow(const SplitRow& row, const std::array<float, kTaps>& k, float* sums, int count) {
  const float* even = row.even.data();
  const float* odd = row.odd.data();
  for (int x = 0; x < count; ++x) {
    sums[x] = sums[x] + k[0] * even[x] + k[1] * odd[x] + k[2] * even[x + 1] + k[3] * odd[x + 1] +
              k[4] * even[x + 2];
  }
}

// Destination columns [first, first + count), all with windows that need no moving in x: the window of the
// first one begins at source column 2 first - 2.
void ReduceStrip(const FloatPlane& source, FloatPlane& destination, int first, int count) {
  std::array<SplitRow, kTaps> split;  // source row y lies in split[y % 5]; windows only ever move down
  int loaded = 0;
  for (int y = 0; y < destination.height; ++y) {
    const int top = ReduceStart(y, source.height);
    for (; loaded < top + kTaps; ++loaded) {
      const float* samples = source.Row(loaded) + static_cast<std::ptrdiff_t>(first) * 2 - 2;
      SplitRow& row = split[static_cast<std::size_t>(loaded % kTaps)];
      row.Load(samples, count + 1);
      const auto last = static_cast<std::size_t>(count) + 1;
      row.even[last] = samples[2 * last];
    }
    float* sums = destination.Row(y) + first;
    std::fill_n(sums, count, 0.0F);
    for (int r = 0; r < kTaps; ++r) {
      AddReducedRow(split[static_cast<std::size_t>((top + r) % kTaps)], KernelRow(r), sums, count);
    }
  }
}

// ---- Expand ----

// The part of a 5-tap window that reads the coarse plane: even positions from `start` below `end`, the first
// tap belonging to `origin`.
struct ExpandWindow {
  int origin;
  int start;
  int end;
};

ExpandWindow ExpandWindowAt(int position, int fineLength, int coarseLength) {
  const int origin = std::min(position > 2 ? position - 2 : 0, fineLength - kTaps);
  return {origin, origin + origin % 2, std::min(2 * coarseLength, origin + kTaps)};
}

struct FineSize {
  int width;
  int height;
};

float ExpandPixel(const FloatPlane& coarse, FineSize fine, int x, int y) {
  const ExpandWindow rows = ExpandWindowAt(y, fine.height, coarse.height);
  const ExpandWindow columns = ExpandWindowAt(x, fine.width, coarse.width);
  float sum = 0.0F;
  for (int r = rows.start; r < rows.end; r += 2) {
    for (int q = columns.start; q < columns.end; q += 2) {
      sum +=
          coarse.Row(r / 2)[q / 2] * KernelRow(r - rows.origin)[static_cast<std::size_t>(q - columns.origin)];
    }
  }
  return sum * 4.0F;
}

// Pairs of fine columns (2j, 2j + 1) whose windows need neither moving nor cutting.
struct PairRange {
  int first;
  int end;
};

PairRange PlainPairs(int fineWidth, int coarseWidth) {
  return {1, std::max(1, std::min((fineWidth - 4) / 2 + 1, coarseWidth - 1))};
}

void AddExpandedRow(const float* coarse, const std::array<float, kTaps>& k, StripRow& even, StripRow& odd,
                    int count) {
  float* evens = even.data();
  float* odds = odd.data();
  for (int j = 0; j < count; ++j) {
    evens[j] = evens[j] + coarse[j - 1] * k[0] + coarse[j] * k[2] + coarse[j + 1] * k[4];
    odds[j] = odds[j] + coarse[j] * k[1] + coarse[j + 1] * k[3];
  }
}

// The expanded pixels of row y in pairs [first, first + count), all of them plain, to 2 count floats.
void ExpandPairs(const FloatPlane& coarse, FineSize fine, int y, int first, int count, float* expanded) {
  const ExpandWindow rows = ExpandWindowAt(y, fine.height, coarse.height);
  StripRow even;
  StripRow odd;
  std::fill_n(even.begin(), count, 0.0F);
  std::fill_n(odd.begin(), count, 0.0F);
  for (int r = rows.start; r < rows.end; r += 2) {
    AddExpandedRow(coarse.Row(r / 2) + first, KernelRow(r - rows.origin), even, odd, count);
  }
  for (std::size_t j = 0; j < static_cast<std::size_t>(count); ++j) {
    expanded[2 * j] = even[j] * 4.0F;
    expanded[2 * j + 1] = odd[j] * 4.0F;
  }
}

// Hands every expanded pixel of row y to use(x, expanded, count), in runs from left to right; the run's
// floats are the user's to overwrite.
template <typename Use>
void ForEachExpandedRun(const FloatPlane& coarse, FineSize fine, int y, Use use) {
  const PairRange plain = PlainPairs(fine.width, coarse.width);
  const auto border = [&](int x, int end) {
    for (; x < end; ++x) {
      float expanded = ExpandPixel(coarse, fine, x, y);
      use(x, &expanded, 1);
    }
  };
  border(0, 2 * plain.first);
  std::array<float, std::size_t{2} * kStripPairs> expanded;
  for (int j = plain.first; j < plain.end; j += kStripPairs) {
    const int count = std::min(kStripPairs, plain.end - j);
    ExpandPairs(coarse, fine, y, j, count, expanded.data());
    use(2 * j, expanded.data(), 2 * count);
  }
  border(2 * plain.end, fine.width);
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

void Reduce5x5(const FloatPlane& source, FloatPlane& destination) {
  if (!destination.AtLeast5x5() || !source.AtLeast5x5()) return;
  const int plainEnd = std::clamp((source.width - 3) / 2 + 1, 1, destination.width);
  for (int x = 1; x < plainEnd; x += kStripPairs) {
    ReduceStrip(source, destination, x, std::min(kStripPairs, plainEnd - x));
  }
  for (int y = 0; y < destination.height; ++y) {
    float* row = destination.Row(y);
    row[0] = ReducePixel(source, 0, y);
    for (int x = plainEnd; x < destination.width; ++x) row[x] = ReducePixel(source, x, y);
  }
}

void SubtractExpanded5x5(const FloatPlane& coarse, const FloatPlane& gauss, FloatPlane& detail) {
  if (!gauss.AtLeast5x5()) return;
  for (int y = 0; y < gauss.height; ++y) {
    const float* from = gauss.Row(y);
    float* to = detail.Row(y);
    ForEachExpandedRun(coarse, {gauss.width, gauss.height}, y, [from, to](int x, float* expanded, int count) {
      // In the run first: it overlaps neither plane, so that this vectorises when they are one.
      for (int i = 0; i < count; ++i) expanded[i] = from[x + i] - expanded[i];
      std::copy_n(expanded, count, to + x);
    });
  }
}

void AddExpanded5x5(const FloatPlane& coarse, const FloatPlane& detail, float factor, FloatPlane& gauss) {
  if (!gauss.AtLeast5x5()) return;
  for (int y = 0; y < gauss.height; ++y) {
    const float* from = detail.Row(y);
    float* to = gauss.Row(y);
    ForEachExpandedRun(coarse, {gauss.width, gauss.height}, y,
                       [from, to, factor](int x, float* expanded, int count) {
                         for (int i = 0; i < count; ++i) expanded[i] = expanded[i] + factor * from[x + i];
                         std::copy_n(expanded, count, to + x);
                       });
  }
}

}  // namespace mirellon::engine
