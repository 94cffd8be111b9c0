#include "scene_landscape.h"

#include <algorithm>
#include <cmath>

#include "texture.h"

namespace mirellon::tools {

namespace {

constexpr Light kHaze{0.62, 0.50, 0.46};

Light Sky(double x, double y) {
  const Light top{0.045, 0.12, 0.33};
  const Light middle{0.22, 0.36, 0.56};
  const Light low{0.95, 0.62, 0.36};
  const double t = y / kShore;
  Light light =
      t < 0.6 ? Mix(top, middle, SmoothStep(0.0, 0.6, t)) : Mix(middle, low, SmoothStep(0.55, 1.0, t));
  const double away = (x - kSunX) * (x - kSunX) + 2.0 * (y - kSunY) * (y - kSunY);
  light = Sum(light, Scaled({1.0, 0.62, 0.28}, 0.9 * Exp2(-away * 9.0) + 2.0 * Exp2(-away * 260.0)));
  const double bend = Fractal(x * 0.8, y * 1.6, 3, 11);
  const double cloud = Fractal(x * 1.3 + bend, y * 5.0 + bend, 6, 21);
  const double cover = SmoothStep(0.50, 0.78, cloud) * SmoothStep(0.02, 0.30, y) * 0.85;
  const double lit = SmoothStep(0.5, 0.9, Fractal(x * 1.3 + bend, (y + 0.03) * 5.0 + bend, 4, 21));
  const Light bright = Mix({0.85, 0.62, 0.52}, {1.05, 0.72, 0.42}, Exp2(-away * 2.0));
  return Mix(light, Mix(bright, {0.36, 0.34, 0.42}, lit), cover);
}

// A slope lit from the right, 0.4 to 1.6.
double SlopeLight(double x, double y, double scale, unsigned seed) {
  const double step = 0.035 / scale;
  const double rise =
      Ridged((x + step) * scale, y * scale, 6, seed) - Ridged((x - step) * scale, y * scale, 6, seed);
  return std::clamp(1.0 - 5.5 * rise, 0.35, 1.65);
}

Paint Mountains(double x, double y, double pixel) {
  const double ridge =
      0.98 - 0.62 * Fractal(x * 1.25 + 0.4, 7, 41) - 0.14 * Exp2(-(x - 1.05) * (x - 1.05) * 9.0);
  if (y < ridge - pixel) return kNothing;
  const double depth = y - ridge;
  const double snow = SmoothStep(
      0.02, -0.03, depth - 0.10 + 0.16 * (Fractal(x * 9.0, y * 9.0, 5, 43) - 0.5) + 0.55 * (y - 0.70));
  const Light rock = Mix({0.16, 0.15, 0.19}, {0.27, 0.22, 0.22}, Fractal(x * 30.0, y * 45.0, 4, 45));
  Light light = Scaled(Mix(rock, {0.80, 0.74, 0.76}, snow), SlopeLight(x, y, 6.0, 47));
  light = Mix(light, kHaze, 0.20 + 0.45 * SmoothStep(0.6, 1.05, y));
  return {light, EdgeCover(depth, pixel)};
}

Paint Hills(double x, double y, double pixel) {
  const double ridge = 1.02 - 0.20 * Fractal(x * 1.7 + 5.2, 6, 51) - 0.015 * Fractal(x * 60.0, 3, 53);
  if (y < ridge - pixel) return kNothing;
  const double grain = Fractal(x * 70.0, y * 110.0, 4, 55);
  Light light = Mix({0.030, 0.060, 0.045}, {0.120, 0.150, 0.070}, grain);
  light = Scaled(light, SlopeLight(x, y, 7.0, 57));
  light = Mix(light, kHaze, 0.22 + 0.20 * SmoothStep(0.9, 1.1, y));
  return {light, EdgeCover(y - ridge, pixel)};
}

// One pine with its tip at (0, 0): a saw-edged cone, lit from the right.
Paint Pine(double x, double y, double height, double pixel, unsigned seed) {
  const double down = y / height;
  if (down < 0.0 || down > 1.05) return kNothing;
  const double tier = down * 11.0 - std::floor(down * 11.0);
  const double half =
      height * 0.20 * down * (0.62 + 0.38 * tier) * (0.8 + 0.4 * ValueNoise(0.0, y * 160.0, seed));
  const double inside = half - std::abs(x);
  if (inside < -pixel) return kNothing;
  const double needles = Fractal(x * 190.0, y * 150.0, 3, seed);
  const double side = half > 0.0 ? 0.5 + 0.5 * x / half : 0.5;
  Light light = Mix({0.010, 0.022, 0.014}, {0.085, 0.120, 0.036},
                    Saturate(0.15 + 0.75 * needles * (0.35 + side) - 0.25 * tier));
  return {light, EdgeCover(inside, pixel)};
}

// A row of pines along a shore line, their feet at `foot`, up to `height` tall.
Paint PineRow(double x, double y, double foot, double height, double pixel, unsigned seed) {
  const double spacing = height * 0.16;
  const int cell = static_cast<int>(std::floor(x / spacing));
  Paint paint = kNothing;
  for (int i = cell - 2; i <= cell + 2; ++i) {
    const double place = (i + 0.2 + 0.6 * CellValue(i, 1, seed)) * spacing;
    // The wood opens towards the sun.
    const double open = 1.15 * Exp2(-(place - 1.75) * (place - 1.75) * 2.6);
    if (CellValue(i, 2, seed) < open) continue;
    const double tall = height * (0.55 + 0.45 * CellValue(i, 3, seed)) * (1.0 - 0.35 * open);
    const auto own = seed + static_cast<unsigned>(i & 1023);
    paint = Over(Pine(x - place, y - (foot - tall), tall, pixel, own), paint);
  }
  return paint;
}

Paint Forest(double x, double y, double pixel) {
  const double foot = kShore + 0.004;
  if (y < foot - 0.32 || y > foot) return kNothing;
  Paint paint = PineRow(x, y, foot - 0.02, 0.20, pixel, 61);
  paint.light = Mix(paint.light, kHaze, 0.12);
  return Over(PineRow(x, y, foot, 0.29, pixel, 67), paint);
}

}  // namespace

Light Landscape(double x, double y, double pixel) {
  Light light = Sky(x, y);
  light = Over(Mountains(x, y, pixel), light);
  light = Over(Hills(x, y, pixel), light);
  return Over(Forest(x, y, pixel), light);
}

Light Lake(double x, double y, double pixel) {
  const double depth = y - kShore;
  const double flat = 1.0 / (0.02 + depth);  // waves look shorter far away
  const double wave = Fractal(x * 1.6 * flat, depth * 34.0 * flat, 3, 71) - 0.5;
  const double ripple = Fractal(x * 40.0, depth * 420.0 / (0.25 + depth), 2, 73) - 0.5;
  const double mirrored = kShore - depth * 1.25 - (0.10 * depth + 0.004) * wave * 2.0 - 0.012 * ripple;
  const Light sky = Landscape(x + 0.02 * wave, std::min(mirrored, kShore - 0.002), 4.0 * pixel);
  const Light water{0.020, 0.055, 0.070};
  Light light = Mix(water, sky, 0.72 - 0.45 * SmoothStep(0.0, 0.55, depth));
  // The sun's path on the waves.
  const double path = Exp2(-(x - kSunX) * (x - kSunX) * 26.0);
  const double glitter = SmoothStep(0.56, 0.80, 0.6 * (wave + 0.5) + 0.6 * (ripple + 0.5));
  light = Sum(light, Scaled({1.2, 0.72, 0.34}, path * glitter * 0.8));
  // A bright line where water meets land.
  return Sum(light, Scaled({0.30, 0.24, 0.18}, Exp2(-depth * depth * 90000.0)));
}

namespace {

// One flower of a grid cell: petals around a yellow middle.
Paint Flower(double x, double y, double size, double pixel, double kind) {
  const double away = std::sqrt(x * x + 1.4 * y * y) / size;
  if (away > 1.3) return kNothing;
  const double edge = 1.0 - away + 0.18 * SineOfTurns(4.0 * x / size) * SineOfTurns(4.0 * y / size);
  const double cover = EdgeCover(edge * size, pixel);
  const Light petals =
      kind < 0.35 ? Light{0.62, 0.035, 0.030}
                  : (kind < 0.65 ? Light{0.80, 0.76, 0.70}
                                 : (kind < 0.85 ? Light{0.72, 0.42, 0.03} : Light{0.30, 0.10, 0.45}));
  const Light middle{0.55, 0.30, 0.02};
  const Light light = Mix(Scaled(petals, 1.1 - 0.5 * away), middle, SmoothStep(0.42, 0.30, away));
  return {light, cover};
}

Paint Flowers(double x, double y, double near, double pixel) {
  const double cellSize = 0.022 + 0.035 * near;
  // The grid is laid over a plane that recedes, so that rows stay whole.
  const int row = static_cast<int>(std::floor(y / 0.045));
  const int column = static_cast<int>(std::floor(x / 0.05));
  Paint paint = kNothing;
  for (int j = row - 1; j <= row + 1; ++j) {
    for (int i = column - 1; i <= column + 1; ++i) {
      const double thick = Fractal(i * 0.11, j * 0.17, 2, 81);
      if (CellValue(i, j, 83) > 1.5 * thick - 0.42) continue;
      const double centreX = (i + CellValue(i, j, 85)) * 0.05;
      const double centreY = (j + CellValue(i, j, 87)) * 0.045;
      const double size = cellSize * (0.16 + 0.16 * CellValue(i, j, 89));
      paint = Over(Flower(x - centreX, y - centreY, size, pixel, CellValue(i, j, 91)), paint);
    }
  }
  return paint;
}

}  // namespace

Paint Meadow(double x, double y, double pixel) {
  const double brink = 1.50 - 0.05 * SmoothStep(0.3, 1.6, x) + 0.05 * (Fractal(x * 2.2, 4, 93) - 0.5) +
                       0.014 * (Fractal(x * 120.0, 2, 95) - 0.5);
  if (y < brink - pixel) return kNothing;
  const double near = SmoothStep(1.40, 2.0, y);
  // One field of blades for the distance, one for what is close; both bent a little by the wind.
  const double bent = x + 0.010 * (Fractal(x * 9.0, y * 14.0, 2, 97) - 0.5);
  const double far = Streaks(bent * 190.0, y * 40.0, 3, 99);
  const double close =
      0.7 * Streaks(bent * 95.0, y * 11.0, 4, 99) + 0.3 * Streaks((2.0 * x - bent) * 150.0, y * 18.0, 2, 101);
  const double blades = Mix(far, close, near);
  const double patches = Fractal(x * 3.0, y * 6.0, 4, 103);
  const Light dark{0.012, 0.030, 0.008};
  const Light fresh = Mix({0.12, 0.22, 0.030}, {0.30, 0.26, 0.060}, SmoothStep(0.35, 0.7, patches));
  Light light = Mix(dark, fresh, SmoothStep(0.30, 0.72, blades));
  light = Scaled(light, 0.75 + 0.7 * patches);
  light = Over(Flowers(x, y, near, pixel), light);
  return {light, EdgeCover(y - brink, pixel)};
}

}  // namespace mirellon::tools
