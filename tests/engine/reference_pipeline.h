// The colour pipeline as it is defined, in plain loops.
#pragma once

#include "engine/parameters.h"
#include "picture/pic_buf.h"

namespace mirellon::test {

// What DenoiseImage makes of request.source (request.destination is not read).
[[nodiscard]] picture::PicBuf ReferenceImage(const engine::DenoiseRequest& request);

// The large-scale pass on one plane.
[[nodiscard]] picture::PicBuf ReferenceChromaLarge(const picture::SBxPicBuf& plane, int strength, int quality,
                                                   double dynamics);

}  // namespace mirellon::test
