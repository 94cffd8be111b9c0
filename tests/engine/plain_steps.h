// The engine's smaller steps as plain loops, nothing merged or reordered; and every instruction set to try
// the fast ones on.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "engine/pyramid_plane.h"
#include "engine/simd_target.h"
#include "support/test_pictures.h"

namespace mirellon::test {

template <typename F>
void OnEverySimdTarget(F run) {
  const std::string best = engine::SimdTargetName();
  std::istringstream names(engine::SupportedSimdTargets());
  for (std::string name; names >> name;) {
    SCOPED_TRACE(name);
    ASSERT_FALSE(engine::ForceSimdTarget(name));
    run();
  }
  ASSERT_FALSE(engine::ForceSimdTarget(best));
}

inline constexpr float kPlainWeights[5] = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};

inline int MovedInside(int start, int length) {
  return start + 5 > length ? length - 5 : start;
}

inline void PlainReduce(const engine::FloatPlane& source, engine::FloatPlane& out) {
  if (!out.AtLeast5x5()) return;
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int sx = MovedInside(x < 2 ? 0 : 2 * x - 2, source.width);
      const int sy = MovedInside(y < 2 ? 0 : 2 * y - 2, source.height);
      float sum = 0.0F;
      for (int r = 0; r < 5; ++r) {
        for (int c = 0; c < 5; ++c) {
          sum += (kPlainWeights[r] * kPlainWeights[c]) * source.Row(sy + r)[sx + c];
        }
      }
      out.Row(y)[x] = sum;
    }
  }
}

inline void PlainExpand(const engine::FloatPlane& coarse, engine::FloatPlane& fine) {
  if (!fine.AtLeast5x5()) return;
  for (int y = 0; y < fine.height; ++y) {
    for (int x = 0; x < fine.width; ++x) {
      const int top = MovedInside(y > 2 ? y - 2 : 0, fine.height);
      const int left = MovedInside(x > 2 ? x - 2 : 0, fine.width);
      float sum = 0.0F;
      for (int r = (top + 1) / 2 * 2; r < std::min(2 * coarse.height, top + 5); r += 2) {
        for (int q = (left + 1) / 2 * 2; q < std::min(2 * coarse.width, left + 5); q += 2) {
          sum += coarse.Row(r / 2)[q / 2] * (kPlainWeights[r - top] * kPlainWeights[q - left]);
        }
      }
      fine.Row(y)[x] = sum * 4.0F;
    }
  }
}

// A pyramid of one component: planes for everything, finest first, nothing in place.
struct PlainPyramid {
  std::vector<engine::FloatPlane> gauss;
  std::vector<engine::FloatPlane> detail;

  static void Load(const picture::SBxPicBuf& picture, int component, engine::FloatPlane& plane) {
    for (int i = 0; i < plane.width * plane.height; ++i) {
      const unsigned sample = Sample(picture, i % plane.width, i / plane.width, component);
      plane.samples[i] = static_cast<float>(sample);
    }
  }

  PlainPyramid(const picture::SBxPicBuf& picture, int component, int levels) : gauss(levels + 1) {
    for (int i = 0; i <= levels; ++i)
      EXPECT_FALSE(gauss[i].Allocate(picture.width >> i, picture.height >> i));
    detail = gauss;
    Load(picture, component, gauss[0]);
    for (int i = 0; i < levels; ++i) {
      PlainReduce(gauss[i], gauss[i + 1]);
      PlainExpand(gauss[i + 1], detail[i]);
      for (std::size_t k = 0; gauss[i].AtLeast5x5() && k < gauss[i].samples.size(); ++k) {
        detail[i].samples[k] = gauss[i].samples[k] - detail[i].samples[k];
      }
    }
  }

  // Makes Gaussian level i of the one above it and its own detail.
  void Rebuild(int i, float factor) {
    PlainExpand(gauss[i + 1], gauss[i]);
    for (std::size_t k = 0; gauss[i].AtLeast5x5() && k < gauss[i].samples.size(); ++k) {
      const float scaled = factor * detail[i].samples[k];
      gauss[i].samples[k] = gauss[i].samples[k] + scaled;
    }
  }
};

inline picture::PicBuf PlainMedian(const picture::SBxPicBuf& plane, int mode) {
  return MadeOf(plane.width, plane.height, 1, plane.bitsPerComponent, [&](int x, int y, int) {
    const bool full = y >= 1 && y <= plane.height - 2 && x >= 1 && x <= plane.width - 2;
    if (mode == 1 && !full) return Sample(plane, x, y);
    const int reach = mode == 1 ? 1 : 3;
    std::vector<unsigned> values;
    for (int r = std::max(0, y - reach); r <= std::min(plane.height - 1, y + reach); ++r) {
      for (int c = std::max(0, x - reach); c <= std::min(plane.width - 1, x + reach); ++c) {
        values.push_back(Sample(plane, c, r));
      }
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
  });
}

}  // namespace mirellon::test
