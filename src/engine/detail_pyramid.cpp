#include "engine/detail_pyramid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// The planes of one component, finest first.
using Levels = std::array<FloatPlane, DetailPyramid::kMaxLevels + 1>;
using Factors = std::array<float, DetailPyramid::kMaxLevels>;

// Reductions that leave a shorter side of at least 5 pixels before each of them.
int CountLevels(int width, int height) {
  int shorter = std::min(width, height);
  int levels = 0;
  while (shorter >= 5 && levels < DetailPyramid::kMaxLevels) {
    shorter >>= 1;
    ++levels;
  }
  return levels;
}

bool AllocateLevels(Levels& planes, int count, int width, int height) {
  for (int i = 0; i < count; ++i) {
    if (planes[static_cast<std::size_t>(i)].Allocate(width >> i, height >> i)) return true;
  }
  return false;
}

bool HasSamples(const SBxPicBuf& picture) {
  return picture.samples != nullptr && (picture.bitsPerComponent == 8 || picture.bitsPerComponent == 16) &&
         picture.components >= 1 && picture.components <= DetailPyramid::kMaxComponents;
}

// Within 1e-5 of 1, factors change nothing that anybody could see, while rebuilding would round.
bool Neutral(double sharp1, double sharp2, double sharp3) {
  const std::array<double, 3> factors = {sharp1, sharp2, sharp3};
  return std::all_of(factors.begin(), factors.end(),
                     [](double factor) { return std::fabs(factor - 1.0) <= 1e-5; });
}

Factors NarrowedFactors(double sharp1, double sharp2, double sharp3) {
  return {static_cast<float>(sharp1), static_cast<float>(sharp2), static_cast<float>(sharp3)};
}

void LoadComponent(const SBxPicBuf& picture, int component, FloatPlane& plane) {
  const int step = picture.components;
  for (int y = 0; y < plane.height; ++y) {
    if (picture.bitsPerComponent == 8) {
      LoadFloats(Row<std::uint8_t>(picture, y) + component, step, plane.Row(y), plane.width);
    } else {
      LoadFloats(Row<std::uint16_t>(picture, y) + component, step, plane.Row(y), plane.width);
    }
  }
}

void StoreComponent(const FloatPlane& plane, SBxPicBuf& picture, int component) {
  const int step = picture.components;
  for (int y = 0; y < plane.height; ++y) {
    if (picture.bitsPerComponent == 8) {
      auto* samples = Row<std::uint8_t>(picture, y) + component;
      StoreFloats(plane.Row(y), Rounding::kTruncate, samples, step, plane.width);
    } else {
      auto* samples = Row<std::uint16_t>(picture, y) + component;
      StoreFloats(plane.Row(y), Rounding::kTruncate, samples, step, plane.width);
    }
  }
}

// Fills the Gaussian levels above gauss[0] and the detail of all but the coarsest.
void Decompose(Levels& gauss, Levels& detail, int levels) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(levels); ++i) {
    Reduce5x5(gauss[i], gauss[i + 1]);
    SubtractExpanded5x5(gauss[i + 1], gauss[i], detail[i]);
  }
}

// Rebuilds gauss[0] from the coarsest level down.
void Rebuild(Levels& gauss, const Levels& detail, int levels, const Factors& factors) {
  for (auto i = static_cast<std::size_t>(levels); i-- > 0;) {
    AddExpanded5x5(gauss[i + 1], detail[i], factors[i], gauss[i]);
  }
}

// Levels 1 to `levels` of `gauss`, and below the coarsest those of `rebuilt`, are scratch.
void SharpenComponent(SBxPicBuf& picture, int component, Levels& gauss, Levels& rebuilt, int levels,
                      const Factors& factors, std::uint32_t threads) {
  const SampleLevel finest{&picture, component};
  Reduce5x5(finest, gauss[1], threads);
  const auto coarsest = static_cast<std::size_t>(levels);
  for (std::size_t i = 1; i < coarsest; ++i) Reduce5x5(gauss[i], gauss[i + 1], threads);
  const FloatPlane* coarse = &gauss[coarsest];
  for (std::size_t i = coarsest - 1; i > 0; --i) {
    Rebuild5x5(gauss[i + 1], *coarse, factors[i], gauss[i], rebuilt[i], threads);
    coarse = &rebuilt[i];
  }
  Rebuild5x5(gauss[1], *coarse, factors[0], finest, Rounding::kTruncate, picture, threads);
}

}  // namespace

bool DetailPyramid::Build(DetailPyramid& pyramid, const SBxPicBuf& picture) {
  Free(pyramid);
  if (!HasSamples(picture)) return true;
  const int levels = CountLevels(picture.width, picture.height);
  for (int c = 0; c < picture.components; ++c) {
    Levels& gauss = pyramid.gauss[static_cast<std::size_t>(c)];
    Levels& detail = pyramid.detail[static_cast<std::size_t>(c)];
    const bool failed = AllocateLevels(gauss, levels + 1, picture.width, picture.height) ||
                        AllocateLevels(detail, levels, picture.width, picture.height);
    if (failed) {
      Free(pyramid);
      return true;
    }
    LoadComponent(picture, c, gauss[0]);
    Decompose(gauss, detail, levels);
  }
  pyramid.components = static_cast<std::uint32_t>(picture.components);
  pyramid.bitsPerComponent = static_cast<std::uint32_t>(picture.bitsPerComponent);
  pyramid.width = static_cast<std::uint32_t>(picture.width);
  pyramid.height = static_cast<std::uint32_t>(picture.height);
  pyramid.levels = static_cast<std::uint32_t>(levels);
  for (std::size_t i = 0; i <= pyramid.levels; ++i) {
    pyramid.levelWidth[i] = pyramid.width >> i;
    pyramid.levelHeight[i] = pyramid.height >> i;
  }
  return false;
}

bool DetailPyramid::Apply(SBxPicBuf& picture, DetailPyramid& pyramid, double sharp1, double sharp2,
                          double sharp3) {
  const bool fits = HasSamples(picture) &&
                    pyramid.bitsPerComponent == static_cast<std::uint32_t>(picture.bitsPerComponent) &&
                    pyramid.width == static_cast<std::uint32_t>(picture.width) &&
                    pyramid.height == static_cast<std::uint32_t>(picture.height);
  if (!fits) return true;
  if (Neutral(sharp1, sharp2, sharp3)) return false;
  const Factors factors = NarrowedFactors(sharp1, sharp2, sharp3);
  const int components = std::min(picture.components, static_cast<int>(pyramid.components));
  for (int c = 0; c < components; ++c) {
    Levels& gauss = pyramid.gauss[static_cast<std::size_t>(c)];
    Rebuild(gauss, pyramid.detail[static_cast<std::size_t>(c)], static_cast<int>(pyramid.levels), factors);
    StoreComponent(gauss[0], picture, c);
  }
  return false;
}

bool DetailPyramid::Free(DetailPyramid& pyramid) {
  pyramid = DetailPyramid{};
  return false;
}

bool SharpenPicture(SBxPicBuf& picture, double sharp1, double sharp2, double sharp3, std::uint32_t threads) {
  if (Neutral(sharp1, sharp2, sharp3)) return false;
  if (!HasSamples(picture)) return true;
  const Factors factors = NarrowedFactors(sharp1, sharp2, sharp3);
  const int levels = CountLevels(picture.width, picture.height);
  if (levels == 0) return false;
  // The finest level stays in the picture, and one set of planes serves one component after the other. A
  // level under 5 x 5 is written by nobody and so stays zero throughout.
  Levels gauss;
  Levels rebuilt;
  for (int i = 1; i <= levels; ++i) {
    const auto level = static_cast<std::size_t>(i);
    if (gauss[level].Allocate(picture.width >> i, picture.height >> i)) return true;
    if (i < levels && rebuilt[level].Allocate(picture.width >> i, picture.height >> i)) return true;
  }
  for (int c = 0; c < picture.components; ++c) {
    SharpenComponent(picture, c, gauss, rebuilt, levels, factors, threads);
  }
  return false;
}

}  // namespace mirellon::engine
