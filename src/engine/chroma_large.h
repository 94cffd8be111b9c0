// The large-scale chrominance pass: removes blotches that the search window is too small to see.
#pragma once

#include "engine/denoise_plane.h"
#include "engine/engine_context.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// Filters the quarter-size level of a three-step pyramid of `plane` (one component, 8 or 16 bits) with
// settings.strength, which callers pass as a whole number, and rebuilds the plane from it and the untouched
// detail levels, in place. The noise level of `settings` is not read: the small level's is estimated afresh.
// Returns 0, or 1 when memory was refused, the plane then being as it was.
[[nodiscard]] int DenoiseChromaLarge(EngineContext& context, picture::SBxPicBuf& plane,
                                     const PlaneSettings& settings);

}  // namespace mirellon::engine
