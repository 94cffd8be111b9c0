// How a large picture is cut, and how far its progress bar reaches.
#pragma once

#include <cstdint>
#include <vector>

#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// One tile: the part of the picture it is responsible for, and that part with its margin of context, clipped
// to the picture. Both in picture coordinates.
struct Tile {
  picture::CBxRect<int> inner;
  picture::CBxRect<int> outer;
};

// Tiles of `side` pixels (at least 1) on a grid from the top left corner, row by row. Throws std::bad_alloc.
[[nodiscard]] std::vector<Tile> PlanTiles(int width, int height, int side, int margin);

// Progress steps of one pass: 49, 169 or 441 by quality, divided by the processors (at least 1).
[[nodiscard]] int ProgressSteps(std::uint32_t quality, std::uint32_t processors);

// The range of one untiled run. `steps` as above; the large-scale pass counts when its strength passes 1.0.
[[nodiscard]] int ProgressRange(int steps, int components, double strengthChromaLarge, bool useGpu);

}  // namespace mirellon::engine
