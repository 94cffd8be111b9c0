// Pictures to measure on.
#pragma once

#include "picture/pic_buf.h"

namespace mirellon::bench {

// A photograph-like picture: shading, edges and fine texture under noise of about 2 % of the range, so that
// weights of every size occur. The same on every machine.
[[nodiscard]] picture::PicBuf NoisyPicture(int width, int height, int components, int bits);

}  // namespace mirellon::bench
