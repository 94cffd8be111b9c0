// Processor and card side by side.
#pragma once

#include <functional>

#include "base/progress_sink.h"
#include "engine/fusion_queue.h"

namespace mirellon::engine {

// Runs finish(tile, taker) for every tile of 0 to count - 1 until each has returned 0: for the processor on
// the calling thread, for the card on one of its own. What fails for the card goes to the processor, with all
// that follows. False when the processor failed. `finish` must not throw.
bool ShareTiles(int count, base::ProgressSink* progress, const std::function<int(int, TileTaker)>& finish);

}  // namespace mirellon::engine
