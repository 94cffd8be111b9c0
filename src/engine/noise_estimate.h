// How noisy a plane is.
#pragma once

#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// The noise level of an 8-bit, one-component plane of width W and height H (rowStride = width), after
// Immerkaer's fast noise variance: sqrt(S / (12 (W - 2)(H - 2)) * 3.14159265359), S the sum of the absolute
// responses to the 3 x 3 kernel (1 -2 1; -2 4 -2; 1 -2 1). Two quirks belong to the definition: only (W -
// 3)(H - 3) neighbourhoods are summed, and each row of them begins W - 1 samples after the one above, not W.
// 0 for a plane of height 3 or less or width 2 or less.
[[nodiscard]] double EstimateNoiseLevel(const picture::SBxPicBuf& plane);

// The levels that a photograph is described by.
struct MeasuredNoise {
  double luminance = 0.0;
  double chrominance = 0.0;
  bool failed = false;  // out of memory
};

// Measured on an 8-bit YUV copy: luminance is the level of Y, chrominance the mean of those of U and V. A
// grey picture is measured on its 8-bit copy, chrominance 0.
[[nodiscard]] MeasuredNoise MeasureNoise(const picture::SBxPicBuf& picture);

}  // namespace mirellon::engine
