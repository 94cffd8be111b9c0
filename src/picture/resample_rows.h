// The inner loops of the resamplers for what a view shows: 8 bits, three components. Vectorised; the sums and
// their order are those of transform.cpp's plain loops, so that every target gives the same bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace mirellon::picture {

// The samples of one axis that make up a value at some position, and their weights.
template <std::size_t kTaps>
struct AxisTaps {
  std::array<int, kTaps> index;  // pixels, always inside the picture
  std::array<float, kTaps> weight;
};

// Writes three floats a column to `to`, which has room for one more: the first component that its taps make
// of a row of `width` pixels, and the two that follow.
void ResampleAcross(const std::uint8_t* row, int width, const AxisTaps<2>* columns, std::size_t count,
                    float* to);
void ResampleAcross(const std::uint8_t* row, int width, const AxisTaps<4>* columns, std::size_t count,
                    float* to);

// Weighs rows of floats and rounds to the nearest sample.
void ResampleDown(const std::array<const float*, 2>& rows, const std::array<float, 2>& weights,
                  std::uint8_t* to, std::size_t count);
void ResampleDown(const std::array<const float*, 4>& rows, const std::array<float, 4>& weights,
                  std::uint8_t* to, std::size_t count);

}  // namespace mirellon::picture
