#include "scene_things.h"

#include <array>
#include <cmath>

#include "lettering.h"
#include "texture.h"

namespace mirellon::tools {

namespace {

// A balloon around (0, 0) with an envelope of radius 1.
Paint Envelope(double x, double y, double pixel) {
  // A sphere above, below it a cone that begins with the sphere's slope.
  const double below = y - 0.45;
  const double half = below < 0.0 ? std::sqrt(std::max(0.0, 1.0 - y * y))
                                  : std::max(0.0, 0.893 - 0.504 * below - 0.359 * below * below);
  if (y < -1.0 - pixel || y > 1.42) return kNothing;
  const double inside = half - std::abs(x);
  if (inside < -pixel) return kNothing;
  const double across = half > 0.0 ? std::max(-1.0, std::min(1.0, x / half)) : 0.0;
  const double turned = 6.0 * (0.5 + 0.36 * across + 0.14 * across * across * across);
  const double gore = turned - std::floor(turned);
  const std::array<Light, 3> cloth{{{0.56, 0.18, 0.09}, {0.82, 0.60, 0.42}, {0.10, 0.30, 0.33}}};
  Light light = cloth[static_cast<std::size_t>(std::floor(turned)) % cloth.size()];
  if (y > -0.12 && y < 0.10)
    light = Mix({0.80, 0.66, 0.20}, light, SmoothStep(0.08, 0.10, std::abs(y + 0.01)));
  const double seam = SmoothStep(0.0, 0.06, gore) * SmoothStep(1.0, 0.94, gore);
  const double round = 0.55 + 0.55 * across + 0.30 * std::sqrt(std::max(0.0, 1.0 - across * across));
  light = Scaled(light, (0.25 + 0.85 * Saturate(round)) * (0.75 + 0.25 * seam));
  light = Scaled(light, 0.94 + 0.12 * Fractal(x * 14.0, y * 14.0, 3, 201));
  return {light, EdgeCover(inside, pixel)};
}

Paint Basket(double x, double y, double pixel) {
  const double ropes =
      std::max(EdgeCover(0.012 - std::abs(std::abs(x) - Mix(0.22, 0.12, (y - 1.36) / 0.26)), pixel), 0.0);
  if (y > 1.36 && y < 1.62) return {{0.10, 0.07, 0.05}, ropes};
  const double weave = 0.6 + 0.4 * SineOfTurns(x * 14.0) * SineOfTurns(y * 14.0);
  return {Scaled({0.30, 0.17, 0.07}, weave * (0.7 + 2.0 * x)),
          BoxCover(x, y, -0.14, 1.62, 0.14, 1.84, pixel)};
}

Paint Balloon(double x, double y, double centreX, double centreY, double radius, double pixel) {
  const double u = (x - centreX) / radius;
  const double v = (y - centreY) / radius;
  if (std::abs(u) > 1.1 || v < -1.1 || v > 1.95) return kNothing;
  return Over(Envelope(u, v, pixel / radius), Basket(u, v, pixel / radius));
}

Light Planks(double x, double y) {
  const double plank = y / 0.042;
  const int index = static_cast<int>(std::floor(plank));
  const double within = plank - std::floor(plank);
  const double grain = Streaks(x * 28.0 + 7.0 * index, y * 420.0, 4, 211);
  const Light wood = Mix({0.110, 0.050, 0.022}, {0.330, 0.180, 0.085}, grain);
  const double tone = 0.75 + 0.5 * CellValue(index, 3, 213);
  return Scaled(wood, tone * (0.25 + 0.75 * SmoothStep(0.0, 0.10, within)) * (1.0 - 0.25 * within));
}

Light Shingles(double x, double y) {
  const double course = y / 0.030;
  const int row = static_cast<int>(std::floor(course));
  const double along = x / 0.045 + 0.5 * (row & 1);
  const int column = static_cast<int>(std::floor(along));
  const double tone = 0.6 + 0.6 * CellValue(column, row, 215);
  const double gap =
      SmoothStep(0.0, 0.07, along - std::floor(along)) * SmoothStep(0.0, 0.16, course - std::floor(course));
  const double moss = SmoothStep(0.55, 0.75, Fractal(x * 9.0, y * 9.0, 4, 217));
  const Light clay = Mix({0.20, 0.060, 0.035}, {0.09, 0.10, 0.035}, moss);
  return Scaled(clay, tone * (0.3 + 0.7 * gap) * (0.8 + 0.4 * ValueNoise(x * 300.0, y * 300.0, 219)));
}

Paint Window(double x, double y, double left, double top, double width, double height, double pixel) {
  const double frame = 0.008;
  const double right = left + width;
  const double bottom = top + height;
  const Paint wood{{0.55, 0.50, 0.42},
                   BoxCover(x, y, left - frame, top - frame, right + frame, bottom + frame, pixel)};
  const double glow = 1.0 - 0.55 * Saturate((y - top) / height);
  const Light lamp = Scaled({1.05, 0.60, 0.20}, glow * (0.8 + 0.3 * Fractal(x * 26.0, y * 26.0, 3, 221)));
  const double bars = std::max(EdgeCover(0.003 - std::abs(x - (left + right) / 2), pixel),
                               EdgeCover(0.003 - std::abs(y - (top + bottom) / 2), pixel));
  const Paint pane{lamp, BoxCover(x, y, left, top, right, bottom, pixel) * (1.0 - bars)};
  return Over(pane, wood);
}

constexpr double kWallLeft = 0.34;
constexpr double kWallRight = 0.98;
constexpr double kWallTop = 1.16;
constexpr double kWallBottom = 1.56;

Paint Roof(double x, double y, double pixel) {
  const double ridgeY = 0.93;
  const double eavesY = 1.19;
  // Seen from the long side: the ridge is shorter than the eaves.
  const double t = (y - ridgeY) / (eavesY - ridgeY);
  const double left = Mix(0.46, 0.27, t);
  const double right = Mix(0.88, 1.05, t);
  return {Shingles(x, y), BoxCover(x, y, left, ridgeY, right, eavesY, pixel)};
}

Paint Chimney(double x, double y, double pixel) {
  const double row = std::floor(y / 0.018);
  const double course = y / 0.018 - row;
  const double along = x / 0.036 + (std::fmod(row, 2.0) == 0.0 ? 0.0 : 0.5);
  const double mortar = SmoothStep(0.0, 0.12, course) * SmoothStep(0.0, 0.10, along - std::floor(along));
  const double tone = 0.7 + 0.6 * CellValue(static_cast<int>(std::floor(along)), static_cast<int>(row), 223);
  const Light brick = Mix({0.40, 0.36, 0.32}, Scaled({0.34, 0.11, 0.06}, tone), mortar);
  return {Scaled(brick, x > 0.775 ? 1.1 : 0.6), BoxCover(x, y, 0.74, 0.84, 0.81, 1.02, pixel)};
}

}  // namespace

Paint Balloons(double x, double y, double pixel) {
  const Paint large = Balloon(x, y, 2.52, 0.36, 0.185, pixel);
  Paint small = Balloon(x, y, 1.46, 0.30, 0.055, pixel);
  small.light = Mix(small.light, {0.45, 0.48, 0.55}, 0.30);
  return Over(large, small);
}

Paint Cabin(double x, double y, double pixel) {
  if (x < 0.2 || x > 1.1 || y < 0.8 || y > 1.62) return kNothing;
  // The left third of the front lies in the shade; under the eaves it is dark.
  const double sun = Mix(0.45, 1.05, SmoothStep(0.45, 0.60, x)) * Mix(0.35, 1.0, SmoothStep(1.18, 1.25, y));
  const double foot = kWallBottom + 0.02 * (Fractal(x * 60.0, 3, 225) - 0.5);
  Paint paint{Scaled(Planks(x, y), sun), BoxCover(x, y, kWallLeft, kWallTop, kWallRight, foot, pixel)};
  paint = Over(Window(x, y, 0.42, 1.27, 0.12, 0.13, pixel), paint);
  paint = Over(Window(x, y, 0.80, 1.27, 0.12, 0.13, pixel), paint);
  const Light door =
      Scaled(Mix({0.02, 0.07, 0.06}, {0.05, 0.15, 0.12}, Streaks(x * 380.0, y * 22.0, 3, 227)), sun);
  paint = Over(Paint{door, BoxCover(x, y, 0.615, 1.27, 0.725, foot, pixel)}, paint);
  paint = Over(Roof(x, y, pixel), paint);
  return Over(Chimney(x, y, pixel), paint);
}

Paint SignBoard(double x, double y, double pixel) {
  if (x < 1.2 || x > 2.0 || y < 1.3 || y > 1.95) return kNothing;
  const double left = 1.30;
  const double right = 1.86;
  const double top = 1.42;
  const double bottom = 1.70;
  const double post = std::max(BoxCover(x, y, left + 0.06, top, left + 0.09, 1.88, pixel),
                               BoxCover(x, y, right - 0.09, top, right - 0.06, 1.88, pixel));
  Paint paint{Scaled(Mix({0.10, 0.05, 0.03}, {0.22, 0.13, 0.07}, Streaks(x * 260.0, y * 18.0, 3, 231)), 0.8),
              post};
  const double grain = Streaks(x * 16.0, y * 210.0, 4, 233);
  const Light board = Mix({0.50, 0.40, 0.28}, {0.74, 0.64, 0.48}, grain);
  const double rim = std::min(std::min(x - left, right - x), std::min(y - top, bottom - y));
  paint = Over(Paint{Mix({0.16, 0.08, 0.04}, board, SmoothStep(0.008, 0.011, rim)),
                     BoxCover(x, y, left, top, right, bottom, pixel)},
               paint);
  double ink = TextCover("MIRELLON", x, y, left + 0.05, top + 0.035, 0.066, pixel);
  ink = std::max(ink, TextCover("EVENING LAKE 1427 M", x, y, left + 0.05, top + 0.125, 0.028, pixel));
  ink = std::max(
      ink, TextCover("CABIN 3 MIN  FOREST 25 MIN  RIDGE 2 H", x, y, left + 0.05, top + 0.176, 0.0145, pixel));
  ink = std::max(ink, TextCover("THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG 0123456789", x, y, left + 0.05,
                                top + 0.212, 0.0099, pixel));
  ink = std::max(ink, TextCover("SMALL LETTERS SHOW WHAT A FILTER KEEPS OF A PICTURE", x, y, left + 0.05,
                                top + 0.240, 0.0085, pixel));
  return Over(Paint{{0.030, 0.022, 0.020}, ink * 0.92}, paint);
}

}  // namespace mirellon::tools
