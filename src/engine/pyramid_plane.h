// Planes of single-precision samples and the two steps between the levels of a pyramid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/pyramid_rows.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// width x height floats, rows without gaps, zero when made.
struct FloatPlane {
  int width = 0;
  int height = 0;
  std::vector<float> samples;

  // True = failed (a negative side or out of memory); the plane is then empty. A side of 0 is fine: the
  // coarsest levels of a very small picture have it.
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

// One component of a picture (8 or 16 bits), as a level whose floats are its samples. Borrows the picture.
struct SampleLevel {
  const picture::SBxPicBuf* picture = nullptr;
  int component = 0;
};

// All steps weigh a 5 x 5 window with float(w[r]) * float(w[c]), w = (0.05, 0.25, 0.4, 0.25, 0.05), and add
// in row-major order of the window in single precision, so that the result is the same on every machine. They
// allocate nothing but threads; up to `threads` of those share the rows.

// Halves a plane. The window of destination pixel (x, y) begins at (2x - 2, 2y - 2), moved inside the source.
// A destination under 5 x 5 is left as it is, and so is every destination of a source under 5 x 5.
void Reduce5x5(const FloatPlane& source, FloatPlane& destination, std::uint32_t threads = 1);
void Reduce5x5(const SampleLevel& source, FloatPlane& destination, std::uint32_t threads = 1);

// All of these double `coarse` to the size of `gauss` on their way, without a plane for it: the window of
// pixel (x, y) begins at (x - 2, y - 2), moved inside `gauss`; only its even rows and columns count, each
// reading the coarse sample at half its place (none past the coarse plane's end); the sum times 4 is
// "expanded". A plane under 5 x 5 is left as it is.

// detail = gauss - expanded; `detail` has the size of `gauss` and may be the same plane.
void SubtractExpanded5x5(const FloatPlane& coarse, const FloatPlane& gauss, FloatPlane& detail);

// gauss = expanded + factor * detail; `detail` has the size of `gauss` and may be the same plane.
void AddExpanded5x5(const FloatPlane& coarse, const FloatPlane& detail, float factor, FloatPlane& gauss);

// Both at once: rebuilt = expanded new coarse plane + factor * (gauss - expanded old coarse plane). `rebuilt`
// has the size of `gauss` and may be the same plane or component; the coarse planes may be one, too.
void Rebuild5x5(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor,
                const FloatPlane& gauss, FloatPlane& rebuilt, std::uint32_t threads = 1);
void Rebuild5x5(const FloatPlane& oldCoarse, const FloatPlane& newCoarse, float factor,
                const SampleLevel& gauss, Rounding rounding, picture::SBxPicBuf& rebuilt,
                std::uint32_t threads = 1);

}  // namespace mirellon::engine
