#include "engine/reference_pipeline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "engine/reference_kernel.h"
#include "support/test_pictures.h"

namespace mirellon::test {

namespace {

using picture::PicBuf;
using picture::SBxPicBuf;

constexpr std::array<float, 5> kTaps = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};

struct Level {
  int rows = 0;
  int columns = 0;
  std::vector<float> values;

  Level() = default;
  Level(int r, int c)
      : rows(r), columns(c), values(static_cast<std::size_t>(r) * static_cast<std::size_t>(c), 0.0F) {}
  float& At(int row, int column) {
    return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                  static_cast<std::size_t>(column)];
  }
};

void Reduce(Level& fine, Level& coarse) {
  if (coarse.columns < 5 || coarse.rows < 5) return;
  for (int i = 0; i < coarse.rows; ++i) {
    for (int j = 0; j < coarse.columns; ++j) {
      int r0 = std::max(0, 2 * i - 2);
      int c0 = std::max(0, 2 * j - 2);
      if (r0 + 5 > fine.rows) r0 = fine.rows - 5;
      if (c0 + 5 > fine.columns) c0 = fine.columns - 5;
      float sum = 0.0F;
      for (int a = 0; a < 5; ++a) {
        for (int b = 0; b < 5; ++b) {
          const float weight = kTaps[static_cast<std::size_t>(a)] * kTaps[static_cast<std::size_t>(b)];
          sum += weight * fine.At(r0 + a, c0 + b);
        }
      }
      coarse.At(i, j) = sum;
    }
  }
}

void Expand(Level& coarse, Level& fine) {
  if (fine.columns < 5 || fine.rows < 5) return;
  for (int y = 0; y < fine.rows; ++y) {
    for (int x = 0; x < fine.columns; ++x) {
      int top = std::max(0, y - 2);
      int left = std::max(0, x - 2);
      if (top + 5 > fine.rows) top = fine.rows - 5;
      if (left + 5 > fine.columns) left = fine.columns - 5;
      float sum = 0.0F;
      for (int r = top + top % 2; r < std::min(top + 5, 2 * coarse.rows); r += 2) {
        for (int q = left + left % 2; q < std::min(left + 5, 2 * coarse.columns); q += 2) {
          const float weight =
              kTaps[static_cast<std::size_t>(r - top)] * kTaps[static_cast<std::size_t>(q - left)];
          sum += weight * coarse.At(r / 2, q / 2);
        }
      }
      fine.At(y, x) = sum * 4.0F;
    }
  }
}

PicBuf Rounded(Level& level, int bits) {
  PicBuf plane(level.columns, level.rows, 1, bits);
  const float largest = bits == 8 ? 255.0F : 65535.0F;
  for (int y = 0; y < level.rows; ++y) {
    for (int x = 0; x < level.columns; ++x) {
      const float value = std::min(std::max(level.At(y, x) + 0.5F, 0.0F), largest);
      SetSample(plane, x, y, 0, static_cast<unsigned>(value));
    }
  }
  return plane;
}

void Fill(Level& level, const SBxPicBuf& plane) {
  for (int y = 0; y < level.rows; ++y) {
    for (int x = 0; x < level.columns; ++x) level.At(y, x) = static_cast<float>(Sample(plane, x, y));
  }
}

PicBuf Component(const SBxPicBuf& picture, int c) {
  PicBuf plane(picture.width, picture.height, 1, picture.bitsPerComponent);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) SetSample(plane, x, y, 0, Sample(picture, x, y, c));
  }
  return plane;
}

unsigned Clamped(std::int64_t value, int bits) {
  return static_cast<unsigned>(std::clamp<std::int64_t>(value, 0, bits == 8 ? 255 : 65535));
}

PicBuf Interleave(const std::array<PicBuf, 3>& planes) {
  PicBuf picture(planes[0]->width, planes[0]->height, 3, planes[0]->bitsPerComponent);
  for (int c = 0; c < 3; ++c) {
    for (int y = 0; y < picture->height; ++y) {
      for (int x = 0; x < picture->width; ++x) {
        SetSample(picture, x, y, c, Sample(planes[static_cast<std::size_t>(c)], x, y));
      }
    }
  }
  return picture;
}

template <typename F>
PicBuf MapPixels(const SBxPicBuf& picture, F map) {
  PicBuf result(picture.width, picture.height, 3, picture.bitsPerComponent);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const std::array<std::int64_t, 3> out = map(static_cast<std::int64_t>(Sample(picture, x, y, 0)),
                                                  static_cast<std::int64_t>(Sample(picture, x, y, 1)),
                                                  static_cast<std::int64_t>(Sample(picture, x, y, 2)));
      for (int c = 0; c < 3; ++c) {
        SetSample(result, x, y, c, Clamped(out[static_cast<std::size_t>(c)], picture.bitsPerComponent));
      }
    }
  }
  return result;
}

PicBuf ToYuv(const SBxPicBuf& picture) {
  const std::int64_t middle = picture.bitsPerComponent == 8 ? 128 : 32768;
  return MapPixels(picture, [middle](std::int64_t b, std::int64_t g, std::int64_t r) {
    return std::array<std::int64_t, 3>{(19595 * r + 38470 * g + 7471 * b + 32768) >> 16,
                                       ((-11059 * r - 21709 * g + 32768 * b + 32768) >> 16) + middle,
                                       ((32768 * r - 27439 * g - 5329 * b + 32768) >> 16) + middle};
  });
}

PicBuf ToRgb(const SBxPicBuf& picture) {
  const std::int64_t middle = picture.bitsPerComponent == 8 ? 128 : 32768;
  return MapPixels(picture, [middle](std::int64_t y, std::int64_t uSample, std::int64_t vSample) {
    const std::int64_t u = uSample - middle;
    const std::int64_t v = vSample - middle;
    return std::array<std::int64_t, 3>{y + ((116130 * u + 32768) >> 16),
                                       y + ((-22554 * u - 46802 * v + 32768) >> 16),
                                       y + ((91881 * v + 32768) >> 16)};
  });
}

PicBuf Median(const SBxPicBuf& plane, int mode) {
  const int reach = mode == 1 ? 1 : 3;
  PicBuf result(plane.width, plane.height, 1, plane.bitsPerComponent);
  for (int y = 0; y < plane.height; ++y) {
    for (int x = 0; x < plane.width; ++x) {
      const bool full = x >= 1 && y >= 1 && x <= plane.width - 2 && y <= plane.height - 2;
      std::vector<unsigned> values;
      for (int r = std::max(0, y - reach); r <= std::min(plane.height - 1, y + reach); ++r) {
        for (int c = std::max(0, x - reach); c <= std::min(plane.width - 1, x + reach); ++c) {
          values.push_back(Sample(plane, c, r));
        }
      }
      std::sort(values.begin(), values.end());
      SetSample(result, x, y, 0, mode == 1 && !full ? Sample(plane, x, y) : values[values.size() / 2]);
    }
  }
  return result;
}

PicBuf Cleaned(const SBxPicBuf& picture, int mode) {
  if (picture.components == 1) return Median(picture, mode);
  return Interleave({Median(Component(picture, 0), mode), Median(Component(picture, 1), mode),
                     Median(Component(picture, 2), mode)});
}

}  // namespace

PicBuf ReferenceChromaLarge(const SBxPicBuf& plane, int strength, int quality, double dynamics) {
  std::array<Level, 4> gauss;
  std::array<Level, 3> detail;
  for (int k = 0; k <= 3; ++k)
    gauss[static_cast<std::size_t>(k)] = Level(plane.height >> k, plane.width >> k);
  Fill(gauss[0], plane);
  for (std::size_t k = 0; k < 3; ++k) {
    Reduce(gauss[k], gauss[k + 1]);
    Level expanded(gauss[k].rows, gauss[k].columns);
    Expand(gauss[k + 1], expanded);
    detail[k] = Level(gauss[k].rows, gauss[k].columns);
    if (gauss[k].rows < 5 || gauss[k].columns < 5) continue;
    for (std::size_t i = 0; i < detail[k].values.size(); ++i) {
      detail[k].values[i] = gauss[k].values[i] - expanded.values[i];
    }
  }
  for (int pass = 2; pass >= 0; --pass) {
    const auto finer = static_cast<std::size_t>(pass);
    if (pass == 1 && !gauss[2].values.empty()) {
      const PicBuf level = Rounded(gauss[2], plane.bitsPerComponent);
      Fill(gauss[2], ReferencePlane(level, strength, quality, dynamics));
    }
    Expand(gauss[finer + 1], gauss[finer]);
    if (gauss[finer].rows < 5 || gauss[finer].columns < 5) continue;
    for (std::size_t i = 0; i < detail[finer].values.size(); ++i)
      gauss[finer].values[i] += detail[finer].values[i];
  }
  return Rounded(gauss[0], plane.bitsPerComponent);
}

PicBuf ReferenceImage(const engine::DenoiseRequest& request) {
  const bool clean = request.pointArtefactMode == 1 || request.pointArtefactMode == 2;
  PicBuf input;
  picture::CBxPicBufAPI::Copy(input, *request.source);
  if (clean) input = Cleaned(*request.source, request.pointArtefactMode);
  const int quality = request.quality == 1 ? 1 : request.quality == 2 ? 2 : 3;
  if (input->components == 1) return ReferencePlane(input, request.strength, quality, request.dynamics);
  const PicBuf yuv = ToYuv(input);
  std::array<PicBuf, 3> planes;
  planes[0] = ReferencePlane(Component(yuv, 0), request.strength, quality, request.dynamics);
  for (int c = 1; c <= 2; ++c) {
    PicBuf plane = ReferencePlane(Component(yuv, c), request.strengthChroma, quality, request.dynamics);
    if (request.strengthChromaLarge > 1.0) {
      plane = ReferenceChromaLarge(plane, static_cast<int>(request.strengthChromaLarge), quality,
                                   request.dynamics);
    }
    planes[static_cast<std::size_t>(c)] = std::move(plane);
  }
  return ToRgb(Interleave(planes));
}

}  // namespace mirellon::test
