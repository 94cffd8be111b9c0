// The far and near land of the sample scene.
#pragma once

#include "light.h"

namespace mirellon::tools {

inline constexpr double kShore = 1.10;  // y of the far shore
inline constexpr double kSunX = 2.02;
inline constexpr double kSunY = 0.86;

// Everything above the far shore: sky, mountains, hills, forest.
[[nodiscard]] Light Landscape(double x, double y, double pixel);
// The water below it, with what it mirrors.
[[nodiscard]] Light Lake(double x, double y, double pixel);
// Grass and flowers in front.
[[nodiscard]] Paint Meadow(double x, double y, double pixel);

}  // namespace mirellon::tools
