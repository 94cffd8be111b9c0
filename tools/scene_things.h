// What people put into the sample scene.
#pragma once

#include "light.h"

namespace mirellon::tools {

[[nodiscard]] Paint Balloons(double x, double y, double pixel);
[[nodiscard]] Paint Cabin(double x, double y, double pixel);
// A board with lettering of several sizes.
[[nodiscard]] Paint SignBoard(double x, double y, double pixel);

}  // namespace mirellon::tools
