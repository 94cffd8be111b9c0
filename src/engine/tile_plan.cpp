#include "engine/tile_plan.h"

#include <algorithm>

#include "engine/similarity_kernel.h"

namespace mirellon::engine {

std::vector<Tile> PlanTiles(int width, int height, int side, int margin) {
  side = std::max(side, 1);
  std::vector<Tile> tiles;
  for (int top = 0; top < height; top += side) {
    const int bottom = std::min(height - top, side) + top;
    for (int left = 0; left < width; left += side) {
      const int right = std::min(width - left, side) + left;
      tiles.push_back(
          {{left, top, right, bottom},
           {std::max(left - margin, 0), std::max(top - margin, 0), std::min(right, width - margin) + margin,
            std::min(bottom, height - margin) + margin}});
    }
  }
  return tiles;
}

int ProgressSteps(std::uint32_t quality, std::uint32_t processors) {
  const int side = SearchWindow(quality);
  return side * side / static_cast<int>(processors);
}

int ProgressRange(int steps, int components, double strengthChromaLarge, bool useGpu) {
  const bool large = components == 3 && strengthChromaLarge > 1.0;
  if (useGpu) return large ? steps * 3 / 2 : steps / 2;
  if (large) return steps * 5 / 2;
  return components == 3 ? steps * 3 / 2 : steps / 2;
}

}  // namespace mirellon::engine
