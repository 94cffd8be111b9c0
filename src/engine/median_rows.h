// The inner loop of the strong median filter, for every SIMD target.
#pragma once

#include <cstdint>

namespace mirellon::engine {

inline constexpr int kMedianReach = 3;                    // samples to each side of the middle one
inline constexpr int kMedianSide = 2 * kMedianReach + 1;  // rows and columns of the window

// Samples that must be readable past a row's end, and writable past the end of `medians`.
inline constexpr int kMedianSlack = 64;

// For each x from 0 to count - 1 the sample at index ranks[x] of the ascending order of columns x to x + 6 of
// `rowCount` (1 to 7) rows. Samples are signed: unsigned ones come with their top bit turned over. A sample
// of the largest value may stand in for one that does not exist, as long as the rank counts existing ones
// only. Each row holds count + 6 + kMedianSlack samples, `ranks` and `medians` count + kMedianSlack.
void MedianRow7x7(const std::int8_t* const* rows, int rowCount, const std::int8_t* ranks,
                  std::int8_t* medians, int count);
void MedianRow7x7(const std::int16_t* const* rows, int rowCount, const std::int16_t* ranks,
                  std::int16_t* medians, int count);

}  // namespace mirellon::engine
