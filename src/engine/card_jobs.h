// The filter's way over the graphics card: jobs, checks of what comes back, and the processor behind it.
#pragma once

#include <array>
#include <string>

#include "engine/denoise_plane.h"
#include "engine/engine_context.h"
#include "engine/parameters.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

enum class CardAnswer : std::uint8_t {
  kDone,             // or aborted: the planes are then as they were
  kLeftToProcessor,  // there is no card, it failed, or it did so before in this run
  kHandedBack,       // the same, and context.cardRun.processorIsElsewhere
};

// What functions that return 0 or 1 return when a job was handed back. They leave their pictures undefined.
inline constexpr int kCardGaveUp = 2;

// Filter padded planes (see PaddedPlane) in place. The first result of a run is compared with the processor's
// at samples, every one is looked at for what cannot be; context.cardRun tells how it went.
// `job` describes the plane as the processor's kernels get it.
[[nodiscard]] CardAnswer FilterPlaneOnCard(EngineContext& context, picture::PicBuf& plane,
                                           const PlaneJob& job, const PlaneSettings& settings);
[[nodiscard]] CardAnswer FilterColourOnCard(EngineContext& context,
                                            const std::array<picture::PicBuf*, 3>& planes,
                                            const DenoiseRequest& request);

// What to tell the user of a run whose card was given up, a sentence part; empty when it was not.
[[nodiscard]] std::string CardNote(const CardRun& run);

}  // namespace mirellon::engine
