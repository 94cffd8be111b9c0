// What all engine calls of one program share.
#pragma once

#include <cstdint>

#include "base/progress_sink.h"
#include "base/run_control.h"
#include "engine/weight_tables.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// What the plane filter hands to a kernel or a card: pictures of one component, even sides and one geometry,
// and the source's samples at 8 bits, the guide. Kernels get one picture as destination and source, and as
// guide where it has 8 bits: they copy what they read before they write. A card gets a destination of its
// own.
struct PlaneJob {
  picture::SBxPicBuf* destination = nullptr;  // with storage
  const picture::SBxPicBuf* source = nullptr;
  const picture::SBxPicBuf* guide = nullptr;
  double strength = 0.0;
  std::uint32_t quality = 0;
  double dynamicity = 0.0;                       // twice m_dDynamics
  base::ProgressSink* progressWindow = nullptr;  // null: no progress
  double noiseLevel = 0.0;  // the effective one; only a card reads it, and only one is given it
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
  [[nodiscard]] virtual bool FilterPlane(const PlaneJob& job) = 0;
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
