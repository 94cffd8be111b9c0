// The steps between pyramid levels as plain loops, one line a step, nothing merged or reordered.
#pragma once

#include <algorithm>

#include "engine/pyramid_plane.h"

namespace mirellon::test {

inline constexpr float kPlainWeights[5] = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};

inline int MovedInside(int start, int length) {
  return start + 5 > length ? length - 5 : start;
}

inline void PlainReduce(const engine::FloatPlane& source, engine::FloatPlane& out) {
  if (out.width < 5 || out.height < 5) return;
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int sx = MovedInside(x < 2 ? 0 : 2 * x - 2, source.width);
      const int sy = MovedInside(y < 2 ? 0 : 2 * y - 2, source.height);
      float sum = 0.0F;
      for (int r = 0; r < 5; ++r) {
        for (int c = 0; c < 5; ++c) {
          const float weight = kPlainWeights[r] * kPlainWeights[c];
          sum += weight * source.Row(sy + r)[sx + c];
        }
      }
      out.Row(y)[x] = sum;
    }
  }
}

inline void PlainExpand(const engine::FloatPlane& coarse, engine::FloatPlane& fine) {
  if (fine.width < 5 || fine.height < 5) return;
  for (int y = 0; y < fine.height; ++y) {
    for (int x = 0; x < fine.width; ++x) {
      const int rowOrigin = MovedInside(y > 2 ? y - 2 : 0, fine.height);
      const int columnOrigin = MovedInside(x > 2 ? x - 2 : 0, fine.width);
      const int rowStart = (rowOrigin + 1) / 2 * 2;
      const int rowEnd = std::min(2 * coarse.height, rowOrigin + 5);
      const int columnStart = (columnOrigin + 1) / 2 * 2;
      const int columnEnd = std::min(2 * coarse.width, columnOrigin + 5);
      float sum = 0.0F;
      for (int r = rowStart; r < rowEnd; r += 2) {
        for (int q = columnStart; q < columnEnd; q += 2) {
          const float weight = kPlainWeights[r - rowOrigin] * kPlainWeights[q - columnOrigin];
          sum += coarse.Row(r / 2)[q / 2] * weight;
        }
      }
      fine.Row(y)[x] = sum * 4.0F;
    }
  }
}

}  // namespace mirellon::test
