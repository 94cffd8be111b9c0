// Samples to texels and back.
#pragma once

#include <vector>

#include "picture/pic_buf_api.h"

namespace mirellon::gpu {

// Numbers from 0 to 255: samples of up to 8 bits as they are, of 9 to 16 bits divided by 256. `channels`
// numbers a pixel, in the order of the components; a picture of one component is replicated. Throws
// std::bad_alloc.
void TexelsOf(const picture::SBxPicBuf& picture, int channels, std::vector<float>& texels);

// The way back, rounded half up and held to the depth: three numbers a pixel into a picture of 1 (the first
// one is taken) or 3 components. True = failed: a number is negative or none at all.
[[nodiscard]] bool SamplesOf(const std::vector<float>& texels, picture::SBxPicBuf& picture);

}  // namespace mirellon::gpu
