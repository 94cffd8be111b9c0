// One task, many pieces, several threads.
#pragma once

#include <cstdint>
#include <functional>

namespace mirellon::engine {

// Runs piece(i, thread) for every i of 0 to count - 1, each once, on up to `threads` threads; thread 0 is the
// calling one, the others are numbered 1 to threads - 1, so that a piece can use what belongs to its thread.
// Pieces are handed out in ascending order as threads become free. Returns when all are done. Threads that
// the system refuses to start are done without. `piece` must not throw.
void ParallelFor(std::uint32_t threads, int count, const std::function<void(int, std::uint32_t)>& piece);

}  // namespace mirellon::engine
