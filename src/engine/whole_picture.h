// The entry that denoises a photograph of any size.
#pragma once

#include "engine/engine_context.h"
#include "engine/parameters.h"

namespace mirellon::engine {

inline constexpr int kTileSide = 1000;      // pixels
inline constexpr int kTileMargin = 50;      // context around a tile
inline constexpr int kFusionMargin = 100;   // the same where processor and card share the tiles
inline constexpr int kLeastCardTile = 100;  // a card that takes no larger tiles is not used

// Denoises request.source into request.destination (re-created), whole when both sides are below the tile
// side, else tile by tile. Uses context.processorCount threads; request.threads is not read. True unless
// aborted or out of memory: an aborted run leaves the tiles finished so far and the unfiltered picture
// elsewhere; without memory the destination is left empty. request.useGpu asks for the card, where
// one is usable, and fusion for the processor beside it, where there are several processors and tiles;
// context.cardRun tells how it went.
bool DenoiseWholePicture(EngineContext& context, const DenoiseRequest& request, bool fusion);

}  // namespace mirellon::engine
