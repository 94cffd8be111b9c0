#include "engine/noise_estimate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// Columns worked on at once: small enough for 32-bit sums and for the first-level cache.
constexpr int kRun = 2048;

std::int16_t SecondDifference(int before, int middle, int after) {
  return static_cast<std::int16_t>(before - 2 * middle + after);
}

// The sum of the absolute responses of `count` neighbourhoods side by side; `first` is the top-left sample of
// the first one. The kernel is a second difference downwards, then one across.
std::uint32_t SumOfResponses(const std::uint8_t* first, std::ptrdiff_t width, int count) {
  std::array<std::int16_t, kRun + 2> down;
  const std::uint8_t* second = first + width;
  const std::uint8_t* third = second + width;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count) + 2; ++i) {
    down[i] = SecondDifference(first[i], second[i], third[i]);
  }
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    const std::int16_t response = SecondDifference(down[i], down[i + 1], down[i + 2]);
    sum += static_cast<std::uint32_t>(std::abs(response));
  }
  return sum;
}

}  // namespace

double EstimateNoiseLevel(const SBxPicBuf& plane) {
  const int width = plane.width;
  const int height = plane.height;
  if (plane.samples == nullptr || height <= 3 || width <= 2) return 0.0;
  std::uint64_t sum = 0;
  for (std::ptrdiff_t r = 0; r < height - 3; ++r) {
    const std::uint8_t* row = plane.samples + r * (width - 1);
    for (int c = 0; c < width - 3; c += kRun) {
      sum += SumOfResponses(row + c, width, std::min(kRun, width - 3 - c));
    }
  }
  const double neighbourhoods = (width - 2.0) * (height - 2.0);
  return std::sqrt(static_cast<double>(sum) / (12.0 * neighbourhoods) * 3.14159265359);
}

MeasuredNoise MeasureNoise(const SBxPicBuf& picture) {
  MeasuredNoise noise;
  noise.failed = true;
  PicBuf copy;
  CBxPicBufAPI::Copy(copy, picture);
  const auto components = static_cast<unsigned>(picture.components);
  if (copy.empty() || CBxPicBufAPI::ConvertBpcComp(copy, 8, components) == 0) return noise;
  if (components == 1) {
    noise.luminance = EstimateNoiseLevel(copy);
    noise.failed = false;
    return noise;
  }
  PicBuf plane(copy.record(), 1);
  if (plane.empty()) return noise;
  CBxPicBufAPI::ConvertRGBtoYUV(copy, copy);
  std::array<double, 3> levels{};
  for (unsigned c = 0; c < levels.size(); ++c) {
    CBxPicBufAPI::ExtractComponent(plane, c, copy);
    levels[c] = EstimateNoiseLevel(plane);
  }
  noise.luminance = levels[0];
  noise.chrominance = (levels[1] + levels[2]) / 2.0;
  noise.failed = false;
  return noise;
}

}  // namespace mirellon::engine
