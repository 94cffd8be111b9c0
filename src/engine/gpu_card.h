// The engine's card, over the filter on the graphics card.
#pragma once

#include <cstdint>

#include "engine/engine_context.h"
#include "gpu/gpu_filter.h"

namespace mirellon::engine {

// Pads tiles, walks the displacements of the search window, reads the result back. Borrows the filter.
class GpuCard final : public CardFilter {
 public:
  explicit GpuCard(gpu::GpuFilter& filter) : filter_(filter) {}

  [[nodiscard]] bool HardwareUsable() const override { return filter_.hardwareUsable(); }
  [[nodiscard]] int MaxTileSide() const override { return filter_.maxTileSide(); }
  [[nodiscard]] bool FilterPlane(const PlaneJob& job) override;
  [[nodiscard]] bool FilterColour(const ColourJob& job) override;

 private:
  gpu::GpuFilter& filter_;
};

// The margin that tiles of this size are uploaded with: the border, 3 pixels wider, holds all that the window
// reaches and is odd or even like the processor's, so that 2 x 2 blocks lie as they do there.
[[nodiscard]] int CardMargin(int width, int height, std::uint32_t quality);

}  // namespace mirellon::engine
