// Random textures over the plane, the same everywhere.
#pragma once

namespace mirellon::tools {

// A random value in [0, 1) that belongs to a grid cell.
[[nodiscard]] double CellValue(int x, int y, unsigned seed);

// Smooth noise in [0, 1] with one bump a unit.
[[nodiscard]] double ValueNoise(double x, double y, unsigned seed);

// `octaves` of it, each twice as fine and half as strong; [0, 1].
[[nodiscard]] double Fractal(double x, double y, int octaves, unsigned seed);

// Like Fractal, with sharp crests.
[[nodiscard]] double Ridged(double x, double y, int octaves, unsigned seed);

// Like Fractal, but stretched noise stays stretched the same way: grass, grain of wood.
[[nodiscard]] double Streaks(double x, double y, int octaves, unsigned seed);

// Fractal along a line.
[[nodiscard]] double Fractal(double x, int octaves, unsigned seed);

}  // namespace mirellon::tools
