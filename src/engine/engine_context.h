// What all engine calls of one program share.
#pragma once

#include <cstdint>

#include "base/run_control.h"
#include "engine/weight_tables.h"

namespace mirellon::engine {

// The graphics card, as far as the engine knows it.
class CardFilter {
 public:
  CardFilter() = default;
  CardFilter(const CardFilter&) = delete;
  CardFilter& operator=(const CardFilter&) = delete;
  virtual ~CardFilter() = default;

  [[nodiscard]] virtual bool HardwareUsable() const = 0;
  [[nodiscard]] virtual int MaxTileSide() const = 0;  // pixels
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
