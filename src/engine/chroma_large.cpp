#include "engine/chroma_large.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/pyramid_plane.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr std::size_t kDepth = 3;          // reductions
constexpr std::size_t kFilteredLevel = 2;  // a quarter of the width and height

// The Gaussian levels above the finest, which stays in the plane, and the rebuilt ones of those below the
// coarsest. A level under 5 x 5 is written by nobody and stays zero.
struct Levels {
  std::array<FloatPlane, kDepth + 1> gauss;
  std::array<FloatPlane, kDepth> rebuilt;

  // True = failed (out of memory).
  [[nodiscard]] bool Allocate(int width, int height) {
    bool failed = false;
    for (std::size_t k = 1; k <= kDepth; ++k) failed |= gauss[k].Allocate(width >> k, height >> k);
    for (std::size_t k = 1; k < kDepth; ++k) failed |= rebuilt[k].Allocate(width >> k, height >> k);
    return failed;
  }
};

template <typename T>
void ToFloat(const SBxPicBuf& from, FloatPlane& to) {
  for (int y = 0; y < to.height; ++y) LoadFloats(Row<T>(from, y), 1, to.Row(y), to.width);
}

template <typename T>
void ToSamples(const FloatPlane& from, SBxPicBuf& to) {
  for (int y = 0; y < from.height; ++y) {
    StoreFloats(from.Row(y), Rounding::kNearest, Row<T>(to, y), 1, from.width);
  }
}

// Filters one level as an integer plane; 0, or 1 when memory was refused. An aborted run leaves it as it was.
int FilterLevel(EngineContext& context, FloatPlane& level, int bits, const PlaneSettings& settings) {
  if (level.width == 0 || level.height == 0) return 0;
  PicBuf plane = PaddedPlane(level.width, level.height, bits);
  if (plane.empty()) return 1;
  bits == 8 ? ToSamples<std::uint8_t>(level, plane) : ToSamples<std::uint16_t>(level, plane);
  PlaneSettings small = settings;
  small.noiseLevel = -1.0;
  const int failed = FilterPaddedPlane(context, plane, small);
  if (failed != 0 || context.control.Aborted()) return failed;
  bits == 8 ? ToFloat<std::uint8_t>(plane, level) : ToFloat<std::uint16_t>(plane, level);
  return 0;
}

}  // namespace

int DenoiseChromaLarge(EngineContext& context, SBxPicBuf& plane, const PlaneSettings& settings) {
  Levels levels;
  if (levels.Allocate(plane.width, plane.height)) return 1;
  auto& [gauss, rebuilt] = levels;
  const SampleLevel finest{&plane, 0};
  Reduce5x5(finest, gauss[1], settings.threads);
  for (std::size_t k = 1; k < kDepth; ++k) Reduce5x5(gauss[k], gauss[k + 1], settings.threads);
  const FloatPlane* coarse = &gauss[kDepth];
  for (std::size_t k = kDepth - 1; k > 0; --k) {
    Rebuild5x5(gauss[k + 1], *coarse, 1.0F, gauss[k], rebuilt[k], settings.threads);
    coarse = &rebuilt[k];
    if (k != kFilteredLevel) continue;
    const int failed = FilterLevel(context, rebuilt[k], plane.bitsPerComponent, settings);
    if (failed != 0) return failed;
  }
  Rebuild5x5(gauss[1], *coarse, 1.0F, finest, Rounding::kNearest, plane, settings.threads);
  return 0;
}

}  // namespace mirellon::engine
