// Samples to texels and back.
#pragma once

#include <vector>

#include "picture/pic_buf_api.h"

namespace mirellon::gpu {

// Numbers from 0 to 255, one for each sample in its order: samples of 8 bits as they are, of 16 bits divided
// by 256. Throws std::bad_alloc.
void TexelsOf(const picture::SBxPicBuf& picture, std::vector<float>& texels);

// The way back, rounded half up and held to the depth. True = failed: a number is negative or none at all.
[[nodiscard]] bool SamplesOf(const std::vector<float>& texels, picture::SBxPicBuf& picture);

}  // namespace mirellon::gpu
