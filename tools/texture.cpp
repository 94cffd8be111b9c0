#include "texture.h"

#include <cmath>
#include <cstdint>

#include "plain_math.h"

namespace mirellon::tools {

double CellValue(int x, int y, unsigned seed) {
  const auto column = static_cast<std::uint64_t>(static_cast<std::uint32_t>(x));
  const auto row = static_cast<std::uint64_t>(static_cast<std::uint32_t>(y));
  return UnitFromBits(
      MixBits((row << 32U | column) ^ (static_cast<std::uint64_t>(seed) * 0x9E3779B97F4A7C15ULL)));
}

double ValueNoise(double x, double y, unsigned seed) {
  const double column = std::floor(x);
  const double row = std::floor(y);
  const int i = static_cast<int>(column);
  const int j = static_cast<int>(row);
  const double s = SmoothStep(0.0, 1.0, x - column);
  const double t = SmoothStep(0.0, 1.0, y - row);
  return Mix(Mix(CellValue(i, j, seed), CellValue(i + 1, j, seed), s),
             Mix(CellValue(i, j + 1, seed), CellValue(i + 1, j + 1, seed), s), t);
}

namespace {

// Octaves of a function of place and seed, each turned against the last, so that the grid does not show.
template <typename Noise>
double SumOfTurned(double x, double y, int octaves, unsigned seed, const Noise& noise) {
  double sum = 0.0;
  double weight = 0.5;
  double total = 0.0;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += weight * noise(x, y, seed + static_cast<unsigned>(octave));
    total += weight;
    weight *= 0.5;
    const double turned = 1.6 * x + 1.2 * y;
    y = 1.6 * y - 1.2 * x;
    x = turned;
  }
  return sum / total;
}

}  // namespace

double Fractal(double x, double y, int octaves, unsigned seed) {
  return SumOfTurned(x, y, octaves, seed, ValueNoise);
}

double Ridged(double x, double y, int octaves, unsigned seed) {
  return SumOfTurned(x, y, octaves, seed, [](double u, double v, unsigned own) {
    return 1.0 - std::abs(2.0 * ValueNoise(u, v, own) - 1.0);
  });
}

double Streaks(double x, double y, int octaves, unsigned seed) {
  double sum = 0.0;
  double weight = 0.5;
  double total = 0.0;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += weight * ValueNoise(x, y, seed + static_cast<unsigned>(octave));
    total += weight;
    weight *= 0.5;
    x = 2.0 * x + 17.3;
    y = 2.0 * y + 5.7;
  }
  return sum / total;
}

double Fractal(double x, int octaves, unsigned seed) {
  return Streaks(x, 0.5, octaves, seed);
}

}  // namespace mirellon::tools
