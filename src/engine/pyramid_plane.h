// Planes of single-precision samples and the two steps between the levels of a pyramid.
#pragma once

#include <cstddef>
#include <vector>

namespace mirellon::engine {

// width x height floats, rows without gaps, zero when made.
struct FloatPlane {
  int width = 0;
  int height = 0;
  std::vector<float> samples;

  // True = failed (out of memory); the plane is then empty.
  [[nodiscard]] bool Allocate(int planeWidth, int planeHeight);
  void Release();

  [[nodiscard]] float* Row(int y) {
    return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
  }
  [[nodiscard]] const float* Row(int y) const {
    return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
  }
  [[nodiscard]] bool AtLeast5x5() const { return width >= 5 && height >= 5; }
};

// Both steps weigh a 5 x 5 window with float(w[r]) * float(w[c]), w = (0.05, 0.25, 0.4, 0.25, 0.05), and add
// in row-major order of the window in single precision, so that the result is the same on every machine.

// Halves a plane. The window of destination pixel (x, y) begins at (2x - 2, 2y - 2), moved inside the source.
// A destination under 5 x 5 is left as it is.
void Reduce5x5(const FloatPlane& source, FloatPlane& destination);

// Doubles a plane: the window of destination pixel (x, y) begins at (x - 2, y - 2), moved inside the
// destination; only its even rows and columns count, each reading the coarse sample at half its place; the
// sum times 4. A destination under 5 x 5 is left as it is.
void Expand5x5(const FloatPlane& coarse, FloatPlane& destination);

}  // namespace mirellon::engine
