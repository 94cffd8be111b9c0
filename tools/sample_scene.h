// A photograph-like scene, drawn by code: a lake in the evening.
#pragma once

namespace mirellon::tools {

// Linear light, 1 = white; may pass 1 where the scene is brighter than white.
struct Light {
  double red;
  double green;
  double blue;
};

// The scene is 3 units wide and 2 high, y downwards; `pixel` is the size of a pixel in units, over which
// edges are smoothed. Any thread.
[[nodiscard]] Light SceneLight(double x, double y, double pixel);

}  // namespace mirellon::tools
