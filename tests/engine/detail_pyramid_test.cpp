#include "engine/detail_pyramid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "engine/plain_pyramid.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// ---- The plain pyramid: one plane a step, nothing in place ----

bool Large(const FloatPlane& plane) {
  return plane.width >= 5 && plane.height >= 5;
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

// One component, rebuilt.
FloatPlane PlainRebuilt(const SBxPicBuf& source, int component, const std::vector<double>& sharp) {
  const int levels = PlainLevels(source.width, source.height);
  std::vector<FloatPlane> gauss(static_cast<std::size_t>(levels) + 1);
  for (int i = 0; i <= levels; ++i) EXPECT_FALSE(gauss[i].Allocate(source.width >> i, source.height >> i));
  std::vector<FloatPlane> detail = gauss;
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      gauss[0].Row(y)[x] = static_cast<float>(test::Sample(source, x, y, component));
    }
  }
  for (int i = 0; i < levels; ++i) {
    test::PlainReduce(gauss[i], gauss[i + 1]);
    test::PlainExpand(gauss[i + 1], detail[i]);
    for (std::size_t k = 0; Large(gauss[i]) && k < gauss[i].samples.size(); ++k) {
      detail[i].samples[k] = gauss[i].samples[k] - detail[i].samples[k];
    }
  }
  for (int i = levels - 1; i >= 0; --i) {
    test::PlainExpand(gauss[i + 1], gauss[i]);
    for (std::size_t k = 0; Large(gauss[i]) && k < gauss[i].samples.size(); ++k) {
      const float scaled = static_cast<float>(sharp[i]) * detail[i].samples[k];
      gauss[i].samples[k] = gauss[i].samples[k] + scaled;
    }
  }
  return gauss[0];
}

PicBuf PlainSharpened(const SBxPicBuf& source, const std::vector<double>& sharp) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  for (int c = 0; c < source.components; ++c) {
    const FloatPlane rebuilt = PlainRebuilt(source, c, sharp);
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x) {
        test::SetSample(result, x, y, c, PlainSample(rebuilt.Row(y)[x], source.bitsPerComponent));
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
