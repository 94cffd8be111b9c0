// The colour pipeline on one picture or tile.
#pragma once

#include "engine/engine_context.h"
#include "engine/parameters.h"

namespace mirellon::engine {

// Point artefacts, RGB to YUV, the filter on every plane with its own strength, the large-scale chrominance
// pass, YUV to RGB. request.destination is re-created with the geometry of request.source, which is left as
// it was. Aborted: the destination equals the source. Returns 0, or 1 when memory was refused: the
// destination then holds nothing of use.
[[nodiscard]] int DenoiseImage(EngineContext& context, const DenoiseRequest& request);

}  // namespace mirellon::engine
