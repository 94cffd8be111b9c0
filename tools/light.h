// Arithmetic with colours in linear light.
#pragma once

#include "plain_math.h"
#include "sample_scene.h"

namespace mirellon::tools {

// A colour that covers what lies behind it to a share of `cover`, 0 to 1.
struct Paint {
  Light light;
  double cover;
};

inline constexpr Paint kNothing{{0.0, 0.0, 0.0}, 0.0};

inline Light Mix(const Light& a, const Light& b, double t) {
  return {Mix(a.red, b.red, t), Mix(a.green, b.green, t), Mix(a.blue, b.blue, t)};
}

inline Light Scaled(const Light& light, double factor) {
  return {light.red * factor, light.green * factor, light.blue * factor};
}

inline Light Sum(const Light& a, const Light& b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}

inline Light Over(const Paint& paint, const Light& behind) {
  return Mix(behind, paint.light, paint.cover);
}

inline Paint Over(const Paint& front, const Paint& behind) {
  const double cover = front.cover + behind.cover * (1.0 - front.cover);
  if (cover <= 0.0) return kNothing;
  return {Mix(behind.light, front.light, front.cover / cover), cover};
}

// How much of a pixel lies inside an edge at the signed distance `inside` (positive inside).
inline double EdgeCover(double inside, double pixel) {
  return Saturate(inside / pixel + 0.5);
}

inline double BoxCover(double x, double y, double left, double top, double right, double bottom,
                       double pixel) {
  return EdgeCover(x - left, pixel) * EdgeCover(right - x, pixel) * EdgeCover(y - top, pixel) *
         EdgeCover(bottom - y, pixel);
}

}  // namespace mirellon::tools
