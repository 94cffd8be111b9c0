// Whether what a card gave back can be right.
#pragma once

#include "engine/denoise_plane.h"
#include "engine/engine_context.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// Averages lie between the least and the greatest sample of `source`, and are not all black where it is not.
// Planes of one geometry, one component, 8 or 16 bits.
[[nodiscard]] bool PlausibleAverage(const picture::SBxPicBuf& source, const picture::SBxPicBuf& result);

// Mean absolute differences over the compared parts of a plane, in 8-bit steps.
struct SampleComparison {
  bool known = false;       // false: memory was refused or the run aborted
  double difference = 0.0;  // between card and processor
  double effect = 0.0;      // between processor and source

  // The card's arithmetic is not the processor's: its weights are floats, chosen pixel by pixel instead of
  // block by block. That makes up to a fifth of what the filter does.
  [[nodiscard]] bool Agrees() const { return difference <= 0.75 + 0.4 * effect; }
};

// Compares the card's result with what the processor makes of the same padded plane.
[[nodiscard]] SampleComparison CompareSamples(EngineContext& context, const picture::SBxPicBuf& source,
                                              const picture::SBxPicBuf& result,
                                              const PlaneSettings& settings);

}  // namespace mirellon::engine
