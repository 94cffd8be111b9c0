#include "engine/chroma_large.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/pyramid_plane.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr int kDepth = 3;          // reductions
constexpr int kFilteredLevel = 2;  // a quarter of the width and height

// Finest first. A level holds its Gaussian until the next one is made of it, then its detail, and from the
// coarsest one down its rebuilt Gaussian; one under 5 x 5 is written by nobody and has no detail.
using Levels = std::array<FloatPlane, kDepth + 1>;

// True = failed (out of memory).
bool Allocate(Levels& levels, int width, int height) {
  bool failed = false;
  for (std::size_t k = 0; k <= kDepth; ++k) failed |= levels[k].Allocate(width >> k, height >> k);
  return failed;
}

template <typename T>
void ToFloat(const SBxPicBuf& from, FloatPlane& to) {
  for (int y = 0; y < to.height; ++y) std::copy_n(Row<T>(from, y), to.width, to.Row(y));
}

template <typename T>
void ToSamples(const FloatPlane& from, SBxPicBuf& to) {
  static constexpr float kLargest = sizeof(T) == 1 ? 255.0F : 65535.0F;
  for (int y = 0; y < from.height; ++y) {
    const float* values = from.Row(y);
    std::transform(values, values + from.width, Row<T>(to, y), [](float value) {
      return static_cast<T>(std::min(std::max(value + 0.5F, 0.0F), kLargest));
    });
  }
}

void ToFloat(const SBxPicBuf& from, FloatPlane& to) {
  from.bitsPerComponent == 8 ? ToFloat<std::uint8_t>(from, to) : ToFloat<std::uint16_t>(from, to);
}

void ToSamples(const FloatPlane& from, SBxPicBuf& to) {
  to.bitsPerComponent == 8 ? ToSamples<std::uint8_t>(from, to) : ToSamples<std::uint16_t>(from, to);
}

void TakeApart(Levels& levels) {
  for (std::size_t k = 0; k < kDepth; ++k) {
    Reduce5x5(levels[k], levels[k + 1]);
    SubtractExpanded5x5(levels[k + 1], levels[k], levels[k]);
  }
}

// Filters one Gaussian level as an integer plane; 0, or 1 when memory was refused.
int FilterLevel(EngineContext& context, FloatPlane& level, int bits, const PlaneSettings& settings) {
  if (level.width == 0 || level.height == 0) return 0;
  PicBuf from(level.width, level.height, 1, bits);
  PicBuf to(level.width, level.height, 1, bits);
  if (from.empty() || to.empty()) return 1;
  ToSamples(level, from);
  PlaneSettings small = settings;
  small.noiseLevel = -1.0;
  const int failed = DenoisePlane(context, to, from, small);
  if (failed == 0) ToFloat(to, level);
  return failed;
}

}  // namespace

int DenoiseChromaLarge(EngineContext& context, SBxPicBuf& plane, const PlaneSettings& settings) {
  Levels levels;
  if (Allocate(levels, plane.width, plane.height)) return 1;
  ToFloat(plane, levels[0]);
  TakeApart(levels);
  for (std::size_t finer = kDepth; finer-- > 0;) {
    if (finer + 1 == kFilteredLevel) {
      const int failed = FilterLevel(context, levels[kFilteredLevel], plane.bitsPerComponent, settings);
      if (failed != 0) return failed;
    }
    AddExpanded5x5(levels[finer + 1], levels[finer], 1.0F, levels[finer]);
  }
  ToSamples(levels[0], plane);
  return 0;
}

}  // namespace mirellon::engine
