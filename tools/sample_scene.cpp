#include "sample_scene.h"

#include <initializer_list>

#include "light.h"
#include "plain_math.h"
#include "scene_landscape.h"
#include "scene_things.h"

namespace mirellon::tools {

Light SceneLight(double x, double y, double pixel) {
  using Layer = Paint (*)(double, double, double);
  Paint paint = kNothing;
  for (const Layer layer : {SignBoard, Cabin, Meadow, Balloons}) {
    paint = Over(paint, layer(x, y, pixel));
    if (paint.cover >= 1.0) return paint.light;  // nothing behind it shows
  }
  return Over(paint, y < kShore ? Landscape(x, y, pixel) : Lake(x, y, pixel));
}

}  // namespace mirellon::tools
