// The row steps of the pyramids, for every SIMD target. All take what lies in the first-level cache and add
// in the order that pyramid_plane.h states.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace mirellon::engine {

inline constexpr int kTaps = 5;
using KernelRow = std::array<float, kTaps>;

constexpr std::array<KernelRow, kTaps> MakePyramidKernel() {
  constexpr KernelRow kWeights = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};
  std::array<KernelRow, kTaps> kernel{};
  for (std::size_t r = 0; r < kTaps; ++r) {
    for (std::size_t c = 0; c < kTaps; ++c) kernel[r][c] = kWeights[r] * kWeights[c];
  }
  return kernel;
}

inline constexpr std::array<KernelRow, kTaps> kPyramidKernel = MakePyramidKernel();

// even[i] = samples[2i], odd[i] = samples[2i + 1], for `pairs` pairs
void SplitColumns(const float* samples, float* even, float* odd, int pairs);

// Five source rows, their even and odd columns apart, from the first window's first column on.
struct ReduceWindow {
  std::array<const float*, kTaps> even;
  std::array<const float*, kTaps> odd;
};
// The weighed windows of `count` destination pixels: window x begins at even[x].
void ReduceRow(const ReduceWindow& window, float* reduced, int count);

// The two or three coarse rows that a fine row sees, from the first pair's coarse sample on, and the kernel
// row that each is weighed with.
struct ExpandWindow {
  int rows = 0;
  std::array<const float*, 3> coarse{};
  std::array<int, 3> kernelRow{};
};
// The expanded pixels of `pairs` pairs of fine columns: of pair j those at 2j and 2j + 1, from coarse samples
// j - 1, j and j + 1.
void ExpandRow(const ExpandWindow& window, float* expanded, int pairs);

// values = from - values
void SubtractRow(const float* from, float* values, int count);
// values = values + factor * detail
void AddScaledRow(const float* detail, float factor, float* values, int count);
// values = values + factor * (gauss - expanded)
void RebuildRow(const float* gauss, const float* expanded, float factor, float* values, int count);

// Samples that lie `step` (1 or 3) apart, to floats.
void LoadFloats(const std::uint8_t* samples, int step, float* values, int count);
void LoadFloats(const std::uint16_t* samples, int step, float* values, int count);

// How a float becomes a sample; both clamp.
enum class Rounding {
  kTruncate,  // what is not a number becomes the largest sample at 8 bits and 0 at 16
  kNearest,   // trunc(value + 0.5)
};
void StoreFloats(const float* values, Rounding rounding, std::uint8_t* samples, int step, int count);
void StoreFloats(const float* values, Rounding rounding, std::uint16_t* samples, int step, int count);

}  // namespace mirellon::engine
