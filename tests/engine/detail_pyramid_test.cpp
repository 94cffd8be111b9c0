#include "engine/detail_pyramid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// ---- The plain pyramid: one plane a step, nothing in place, nothing shared with the code under test ----

struct Plain {
  int width = 0;
  int height = 0;
  std::vector<float> values;

  Plain(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h, 0.0F) {}
  float& At(int x, int y) { return values[static_cast<std::size_t>(y) * width + x]; }
  float At(int x, int y) const { return values[static_cast<std::size_t>(y) * width + x]; }
  bool Large() const { return width >= 5 && height >= 5; }
};

constexpr float kW[5] = {0.05F, 0.25F, 0.4F, 0.25F, 0.05F};

int MovedInside(int start, int length) {
  return start + 5 > length ? length - 5 : start;
}

void PlainReduce(const Plain& source, Plain& out) {
  if (!out.Large()) return;
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int sx = MovedInside(x < 2 ? 0 : 2 * x - 2, source.width);
      const int sy = MovedInside(y < 2 ? 0 : 2 * y - 2, source.height);
      float sum = 0.0F;
      for (int r = 0; r < 5; ++r) {
        for (int c = 0; c < 5; ++c) sum += kW[r] * kW[c] * source.At(sx + c, sy + r);
      }
      out.At(x, y) = sum;
    }
  }
}

void PlainExpand(const Plain& coarse, Plain& out) {
  if (!out.Large()) return;
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int oy = MovedInside(y > 2 ? y - 2 : 0, out.height);
      const int ox = MovedInside(x > 2 ? x - 2 : 0, out.width);
      float sum = 0.0F;
      for (int r = oy + oy % 2; r < std::min(2 * coarse.height, oy + 5); r += 2) {
        for (int q = ox + ox % 2; q < std::min(2 * coarse.width, ox + 5); q += 2) {
          sum += coarse.At(q / 2, r / 2) * (kW[r - oy] * kW[q - ox]);
        }
      }
      out.At(x, y) = sum * 4.0F;
    }
  }
}

unsigned PlainSample(float value, int bits) {
  if (bits == 8) {
    if (std::isnan(value) || value >= 255.0F) return 255;
    return value <= 0.0F ? 0 : static_cast<unsigned>(value);
  }
  if (std::isnan(value) || value <= 0.0F) return 0;
  return value >= 65535.0F ? 65535 : static_cast<unsigned>(value);
}

int PlainLevels(int width, int height) {
  int m = std::min(width, height);
  int levels = 0;
  if (m > 4) {
    while (m >= 5 && levels < 3) {
      m >>= 1;
      ++levels;
    }
  }
  return std::min(levels, 8);
}

PicBuf PlainSharpened(const SBxPicBuf& source, const std::vector<double>& sharp) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  const int levels = PlainLevels(source.width, source.height);
  for (int c = 0; c < source.components; ++c) {
    std::vector<Plain> gauss;
    for (int i = 0; i <= levels; ++i) gauss.emplace_back(source.width >> i, source.height >> i);
    std::vector<Plain> detail = gauss;
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x) {
        gauss[0].At(x, y) = static_cast<float>(test::Sample(source, x, y, c));
      }
    }
    for (int i = 0; i < levels; ++i) {
      PlainReduce(gauss[i], gauss[i + 1]);
      PlainExpand(gauss[i + 1], detail[i]);
      if (!gauss[i].Large()) continue;
      for (std::size_t k = 0; k < gauss[i].values.size(); ++k) {
        detail[i].values[k] = gauss[i].values[k] - detail[i].values[k];
      }
    }
    for (int i = levels - 1; i >= 0; --i) {
      PlainExpand(gauss[i + 1], gauss[i]);
      const auto factor = static_cast<float>(sharp[i]);
      if (!gauss[i].Large()) continue;
      for (std::size_t k = 0; k < gauss[i].values.size(); ++k) {
        const float scaled = factor * detail[i].values[k];
        gauss[i].values[k] = gauss[i].values[k] + scaled;
      }
    }
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x) {
        test::SetSample(result, x, y, c, PlainSample(gauss[0].At(x, y), source.bitsPerComponent));
      }
    }
  }
  return result;
}

// ---- Both ways to the result ----

PicBuf Applied(const SBxPicBuf& source, const std::vector<double>& sharp) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  DetailPyramid pyramid;
  EXPECT_FALSE(DetailPyramid::Build(pyramid, source));
  EXPECT_FALSE(DetailPyramid::Apply(result, pyramid, sharp[0], sharp[1], sharp[2]));
  EXPECT_FALSE(DetailPyramid::Free(pyramid));
  return result;
}

PicBuf Sharpened(const SBxPicBuf& source, const std::vector<double>& sharp) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  EXPECT_FALSE(SharpenPicture(result, sharp[0], sharp[1], sharp[2]));
  return result;
}

void ExpectPlain(const SBxPicBuf& source, const std::vector<double>& sharp) {
  SCOPED_TRACE(testing::Message() << source.width << "x" << source.height << "x" << source.components << "@"
                                  << source.bitsPerComponent << " by " << sharp[0]);
  const PicBuf expected = PlainSharpened(source, sharp);
  EXPECT_TRUE(test::SamePicture(Applied(source, sharp), expected));
  EXPECT_TRUE(test::SamePicture(Sharpened(source, sharp), expected));
}

TEST(DetailPyramid, EqualsPlainPyramidOnEverySize) {
  for (const int bits : {8, 16}) {
    for (int height = 1; height <= 12; ++height) {
      for (int width = 1; width <= 12; ++width) {
        ExpectPlain(test::RandomPicture(width, height, 1, bits, 50U * width + height), {2.0, 0.7, 1.5});
      }
    }
    for (const auto& [width, height] : {std::tuple{19, 20}, {20, 20}, {21, 39}, {40, 33}, {301, 97}}) {
      ExpectPlain(test::PhotoLikePicture(width, height, 3, bits, width), {1.8, 1.3, 0.4});
    }
  }
}

TEST(DetailPyramid, ClampsAndHandlesWhatIsNotANumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const int bits : {8, 16}) {
    const PicBuf noise = test::RandomPicture(33, 26, 3, bits, 4);
    ExpectPlain(noise, {4.0, 4.0, 4.0});
    ExpectPlain(noise, {-3.0, 1.0, 1.0});
    ExpectPlain(noise, {0.0, 0.0, 0.0});
    ExpectPlain(noise, {infinity, 1e30, -infinity});
    ExpectPlain(noise, {std::nan(""), 1.0, 1.0});
  }
}

TEST(DetailPyramid, RecordsTheShapeOfThePicture) {
  struct Case {
    int width, height;
    unsigned levels;
  };
  for (const Case& c :
       {Case{4, 100, 0}, {5, 100, 1}, {9, 100, 1}, {30, 12, 2}, {19, 19, 2}, {20, 64, 3}, {1, 1, 0}}) {
    DetailPyramid pyramid;
    ASSERT_FALSE(DetailPyramid::Build(pyramid, test::RandomPicture(c.width, c.height, 3, 16, 1)));
    EXPECT_EQ(pyramid.levels, c.levels) << c.width << "x" << c.height;
    EXPECT_EQ(pyramid.components, 3U);
    EXPECT_EQ(pyramid.bitsPerComponent, 16U);
    for (unsigned i = 0; i <= c.levels; ++i) {
      EXPECT_EQ(pyramid.levelWidth[i], static_cast<unsigned>(c.width >> i));
      EXPECT_EQ(pyramid.levelHeight[i], static_cast<unsigned>(c.height >> i));
      EXPECT_EQ(pyramid.gauss[2][i].width, c.width >> i);
    }
    DetailPyramid::Free(pyramid);
    EXPECT_TRUE(pyramid.gauss[0][0].samples.empty());
  }
}

TEST(DetailPyramid, LevelUnderFiveStaysZero) {
  // 30 x 12: the second reduction would be 7 x 3, so the finer level's detail is the whole of that level.
  const PicBuf picture = test::RandomPicture(30, 12, 1, 8, 2);
  DetailPyramid pyramid;
  ASSERT_FALSE(DetailPyramid::Build(pyramid, picture));
  for (const float value : pyramid.gauss[0][2].samples) EXPECT_EQ(value, 0.0F);
  EXPECT_EQ(pyramid.detail[0][1].samples, pyramid.gauss[0][1].samples);
  EXPECT_TRUE(test::SamePicture(Sharpened(picture, {1.5, 1.2, 3.9}), Sharpened(picture, {1.5, 1.2, 0.0})));
}

TEST(DetailPyramid, FactorsNearOneChangeNothing) {
  const PicBuf picture = test::RandomPicture(64, 48, 3, 8, 3);
  for (const double factor : {1.0, 1.000009, 0.999991}) {
    EXPECT_TRUE(test::SamePicture(Applied(picture, {factor, factor, factor}), picture));
    EXPECT_TRUE(test::SamePicture(Sharpened(picture, {factor, factor, factor}), picture));
  }
  ExpectPlain(picture, {1.0, 1.00002, 1.0});  // truncation alone makes this another picture
  EXPECT_FALSE(test::SamePicture(Sharpened(picture, {1.0, 1.00002, 1.0}), picture));
}

TEST(DetailPyramid, RefusesWhatDoesNotFit) {
  DetailPyramid pyramid;
  EXPECT_TRUE(DetailPyramid::Build(pyramid, PicBuf()));
  ASSERT_FALSE(DetailPyramid::Build(pyramid, test::RandomPicture(20, 21, 3, 8, 1)));
  for (const auto& [width, height, bits] : {std::tuple{21, 21, 8}, {20, 20, 8}, {20, 21, 16}}) {
    PicBuf other = test::RandomPicture(width, height, 3, bits, 2);
    PicBuf before;
    CBxPicBufAPI::Copy(before, other);
    EXPECT_TRUE(DetailPyramid::Apply(other, pyramid, 2.0, 2.0, 2.0));
    EXPECT_TRUE(test::SamePicture(other, before));
  }
  PicBuf empty;
  EXPECT_TRUE(SharpenPicture(empty, 2.0, 1.0, 1.0));
}

}  // namespace
}  // namespace mirellon::engine
