// The entry that denoises a photograph of any size.
#pragma once

#include "engine/engine_context.h"
#include "engine/parameters.h"

namespace mirellon::engine {

inline constexpr int kTileSide = 1000;  // pixels
inline constexpr int kTileMargin = 50;  // context around a tile

// Denoises request.source into request.destination (re-created), whole when both sides are below the tile
// side, else tile by tile. Uses context.processorCount threads; request.threads is not read. True unless
// aborted or out of memory: an aborted run leaves the tiles finished so far and the unfiltered picture
// elsewhere; without memory the destination is left empty. request.useGpu and fusion ask for the card, where
// one is usable.
bool DenoiseWholePicture(EngineContext& context, const DenoiseRequest& request, bool fusion);

}  // namespace mirellon::engine
