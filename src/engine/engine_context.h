// What all engine calls of one program share.
#pragma once

#include <cstdint>

#include "base/progress_sink.h"
#include "base/run_control.h"
#include "engine/weight_tables.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// What the plane filter hands to a card: padded pictures of even sides and one geometry, the source's 8-bit
// guide, and the effective noise level.
struct CardPlaneJob {
  picture::SBxPicBuf* destination;
  const picture::SBxPicBuf* source;
  const picture::SBxPicBuf* guide;
  double strength;
  std::uint32_t quality;
  double dynamicity;  // twice m_dDynamics
  base::ProgressSink* progressWindow;
  double noiseLevel;
};

// The graphics card, as far as the engine knows it.
class CardFilter {
 public:
  CardFilter() = default;
  CardFilter(const CardFilter&) = delete;
  CardFilter& operator=(const CardFilter&) = delete;
  virtual ~CardFilter() = default;

  [[nodiscard]] virtual bool HardwareUsable() const = 0;
  [[nodiscard]] virtual int MaxTileSide() const = 0;  // pixels
  // True = failed; the processor then filters the plane.
  [[nodiscard]] virtual bool FilterPlane(const CardPlaneJob& job) = 0;
};

// Owned by the application, one per program (tests make one each), handed down by reference.
struct EngineContext {
  base::RunControl control;
  std::uint32_t processorCount = 1;  // threads that a whole-picture run may use
  WeightTableCache weightTables;
  CardFilter* card = nullptr;  // not owned; null: none
};

// The processors that this process may run on (its affinity set), counted modulo 256, at least 1.
[[nodiscard]] std::uint32_t CountProcessors();

}  // namespace mirellon::engine
