// The filter on one plane, with all that surrounds it: padding, guide, noise level, choice of backend.
#pragma once

#include <cstdint>

#include "base/progress_sink.h"
#include "engine/engine_context.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

struct PlaneSettings {
  double strength = 10.0;
  std::uint32_t quality = 2;
  double dynamics = 0.0;
  base::ProgressSink* progressWindow = nullptr;
  double noiseLevel = -1.0;  // negative: estimated from the plane; for a card that reads it
  bool useGpu = false;
  std::uint32_t threads = 1;  // at most 16 are used
};

// A plane as the filter wants it: one component, `width` and `height` rounded up to even numbers, zeros in
// what that adds, anything elsewhere. Empty when memory was refused.
[[nodiscard]] picture::PicBuf PaddedPlane(int width, int height, int bits);

// The 8-bit guide of a 16-bit plane: its high bytes. Empty when memory was refused.
[[nodiscard]] picture::PicBuf HighBytes(const picture::SBxPicBuf& plane);

// Filters such a plane in place. Aborted: whatever it then holds. Returns 0, or 1 when memory was refused, or
// kCardGaveUp (card_jobs.h).
[[nodiscard]] int FilterPaddedPlane(EngineContext& context, picture::PicBuf& plane,
                                    const PlaneSettings& settings);

// Filters every component of `source` (8 or 16 bits) into `destination`, which has storage of the same
// geometry and may be the same picture unless it has several components. Aborted: the destination equals the
// source. Returns 0, or 1 when memory was refused; the destination equals the source then, too.
[[nodiscard]] int DenoisePlane(EngineContext& context, picture::SBxPicBuf& destination,
                               picture::SBxPicBuf& source, const PlaneSettings& settings);

// The noise level that a card is given which reads it: no kernel does. A given level above 0 is divided by |2
// dynamics| / 20 + 1; an estimate (given < 0) and 0 are not.
[[nodiscard]] double EffectiveNoiseLevel(double given, double dynamics, const picture::SBxPicBuf& guide);

}  // namespace mirellon::engine
