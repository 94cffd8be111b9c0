// The colour pipeline on a part of a picture.
#pragma once

#include "engine/engine_context.h"
#include "engine/parameters.h"
#include "engine/tile_plan.h"

namespace mirellon::engine {

// Runs the pipeline of `request` on tile.outer of `source` and writes tile.inner of the result to
// `destination` at the same place: a picture of the same geometry, with storage. The pictures named in the
// request are not read, its progress and threads are used. Aborted: what is written is the source. Returns 0,
// 1 when memory was refused, or kCardGaveUp (card_jobs.h): nothing is written then.
[[nodiscard]] int DenoiseRegion(EngineContext& context, const DenoiseRequest& request,
                                const picture::SBxPicBuf& source, const Tile& tile,
                                picture::SBxPicBuf& destination);

}  // namespace mirellon::engine
