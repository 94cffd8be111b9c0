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

template <typename T>
void LoadSamples(const SBxPicBuf& picture, int component, FloatPlane& plane) {
  const auto step = static_cast<std::size_t>(picture.components);
  for (int y = 0; y < plane.height; ++y) {
    const T* from = Row<T>(picture, y) + component;
    float* to = plane.Row(y);
    for (std::size_t x = 0; x < static_cast<std::size_t>(plane.width); ++x) {
      to[x] = static_cast<float>(from[x * step]);
    }
  }
}

void LoadComponent(const SBxPicBuf& picture, int component, FloatPlane& plane) {
  if (picture.bitsPerComponent == 8) {
    LoadSamples<std::uint8_t>(picture, component, plane);
  } else {
    LoadSamples<std::uint16_t>(picture, component, plane);
  }
}

// Clamped, then truncated. What is not a number becomes the largest sample at 8 bits and 0 at 16: the
// comparisons are written so that it falls there.
std::uint8_t Truncated(float value, std::uint8_t /*depth*/) {
  const float below = value < 255.0F ? value : 255.0F;
  return static_cast<std::uint8_t>(static_cast<int>(below > 0.0F ? below : 0.0F));
}

std::uint16_t Truncated(float value, std::uint16_t /*depth*/) {
  const float above = value > 0.0F ? value : 0.0F;
  return static_cast<std::uint16_t>(static_cast<int>(above < 65535.0F ? above : 65535.0F));
}

template <typename T>
void StoreSamples(const FloatPlane& plane, SBxPicBuf& picture, int component) {
  // Truncating apart from spreading over the pixels lets the compiler vectorise the former.
  constexpr std::size_t kRun = 1024;
  std::array<T, kRun> run;
  const auto step = static_cast<std::size_t>(picture.components);
  const auto width = static_cast<std::size_t>(plane.width);
  for (int y = 0; y < plane.height; ++y) {
    for (std::size_t first = 0; first < width; first += kRun) {
      const std::size_t count = std::min(kRun, width - first);
      const float* from = plane.Row(y) + first;
      for (std::size_t x = 0; x < count; ++x) run[x] = Truncated(from[x], T{});
      T* to = Row<T>(picture, y) + first * step + component;
      for (std::size_t x = 0; x < count; ++x) to[x * step] = run[x];
    }
  }
}

void StoreComponent(const FloatPlane& plane, SBxPicBuf& picture, int component) {
  if (picture.bitsPerComponent == 8) {
    StoreSamples<std::uint8_t>(plane, picture, component);
  } else {
    StoreSamples<std::uint16_t>(plane, picture, component);
  }
}

// Fills the Gaussian levels above gauss[0] and the detail of all but the coarsest. Both may be the same
// planes: a level's Gaussian is not needed once the next one and its own detail are there.
void Decompose(Levels& gauss, Levels& detail, int levels) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(levels); ++i) {
    Reduce5x5(gauss[i], gauss[i + 1]);
    SubtractExpanded5x5(gauss[i + 1], gauss[i], detail[i]);
  }
}

// Rebuilds gauss[0] from the coarsest level down; again both may be the same planes.
void Rebuild(Levels& gauss, const Levels& detail, int levels, const Factors& factors) {
  for (auto i = static_cast<std::size_t>(levels); i-- > 0;) {
    AddExpanded5x5(gauss[i + 1], detail[i], factors[i], gauss[i]);
  }
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

bool SharpenPicture(SBxPicBuf& picture, double sharp1, double sharp2, double sharp3) {
  if (Neutral(sharp1, sharp2, sharp3)) return false;
  if (!HasSamples(picture)) return true;
  const Factors factors = NarrowedFactors(sharp1, sharp2, sharp3);
  const int levels = CountLevels(picture.width, picture.height);
  // One set of planes serves as Gaussian and detail, and one component after the other. A level under 5 x 5
  // is written by nobody and so stays zero throughout.
  Levels planes;
  if (AllocateLevels(planes, levels + 1, picture.width, picture.height)) return true;
  for (int c = 0; c < picture.components; ++c) {
    LoadComponent(picture, c, planes[0]);
    Decompose(planes, planes, levels);
    Rebuild(planes, planes, levels, factors);
    StoreComponent(planes[0], picture, c);
  }
  return false;
}

}  // namespace mirellon::engine
