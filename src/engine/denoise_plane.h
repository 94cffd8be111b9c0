// The filter on one plane, with all that surrounds it: padding, guide, noise level, choice of backend.
#pragma once

#include <cstdint>

#include "base/progress_sink.h"
#include "engine/engine_context.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

struct PlaneSettings {
  double strength = 10.0;
  std::uint32_t quality = 2;
  double dynamics = 0.0;
  base::ProgressSink* progressWindow = nullptr;
  double noiseLevel = -1.0;  // negative: estimated from the plane; only a card reads it
  bool useGpu = false;
  std::uint32_t threads = 1;  // at most 16 are used
};

// Filters every component of `source` (8 or 16 bits) into `destination` of the same geometry. The storage of
// both is released while the filter runs and re-created with the geometry of `destination`; the samples of
// `source` are the same afterwards. Aborted: the destination equals the source. Returns 0, or 1 when memory
// was refused: then either picture may be without storage.
[[nodiscard]] int DenoisePlane(EngineContext& context, picture::SBxPicBuf& destination,
                               picture::SBxPicBuf& source, const PlaneSettings& settings);

// The noise level that a card is given. A given level above 0 is divided by |2 dynamics| / 20 + 1; an
// estimate (given < 0) and 0 are not.
[[nodiscard]] double EffectiveNoiseLevel(double given, double dynamics, const picture::SBxPicBuf& guide);

}  // namespace mirellon::engine
