// The similarity-weighted averaging filter on one plane, on the processor.
//
// Every pixel becomes the weighted mean of the pixels at all displacements of a search window around it. A
// weight falls with the difference between the 6 x 6 patches around the two pixels and is shared by a 2 x 2
// block. All sums are exact integers, so the result does not depend on threads, bands or instruction set.
#pragma once

#include <cstdint>

#include "engine/engine_context.h"

namespace mirellon::engine {

// Side of the search window: 7 for quality 1, 13 for 2, 21 otherwise.
[[nodiscard]] int SearchWindow(std::uint32_t quality);
// Displacements of half the window, the centre included: 25, 85 or 221. Each but the centre counts both ways.
[[nodiscard]] int DisplacementCount(std::uint32_t quality);

// The kernels never use more threads than this.
inline constexpr std::uint32_t kMostKernelThreads = 16;

// Filter the job's source into its destination, 8 or 16 bits as the name says; the filter's variance is
// strength^3.5. The job's progress advances by one for each displacement that falls to the calling thread
// when `threads` share them. Return 0 when done or aborted (the destination is then left as it was, in part),
// 1 when memory for tables or work pictures was refused. The measured noise level plays no part on the
// processor.
int DenoiseKernel8(EngineContext& context, const PlaneJob& job);
int DenoiseKernel8Threaded(EngineContext& context, const PlaneJob& job, std::uint32_t threads);
int DenoiseKernel16(EngineContext& context, const PlaneJob& job);
int DenoiseKernel16Threaded(EngineContext& context, const PlaneJob& job, std::uint32_t threads);

}  // namespace mirellon::engine
