#include "engine/detail_pyramid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine/plain_steps.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;
using picture::SBxPicBuf;
using Factors = std::array<double, 3>;

unsigned PlainSample(float value, int bits) {
  const float largest = bits == 8 ? 255.0F : 65535.0F;
  if (std::isnan(value)) return bits == 8 ? 255 : 0;
  return static_cast<unsigned>(std::clamp(value, 0.0F, largest));
}

std::vector<test::PlainPyramid> PlainPyramids(const SBxPicBuf& source) {
  const int shorter = std::min(source.width, source.height);
  const int levels = shorter < 5 ? 0 : shorter < 10 ? 1 : shorter < 20 ? 2 : 3;
  std::vector<test::PlainPyramid> pyramids;
  pyramids.reserve(3);
  for (int c = 0; c < source.components; ++c) pyramids.emplace_back(source, c, levels);
  return pyramids;
}

PicBuf PlainSharpened(const SBxPicBuf& source, const Factors& sharp) {
  std::vector<test::PlainPyramid> pyramids = PlainPyramids(source);
  for (test::PlainPyramid& pyramid : pyramids) {
    for (auto i = static_cast<int>(pyramid.gauss.size()) - 2; i >= 0; --i) {
      pyramid.Rebuild(i, static_cast<float>(sharp[i]));
    }
  }
  const auto sampleAt = [&](int x, int y, int c) {
    return PlainSample(pyramids[c].gauss[0].Row(y)[x], source.bitsPerComponent);
  };
  return test::MadeOf(source.width, source.height, source.components, source.bitsPerComponent, sampleAt);
}

// The levels' floats.
void ExpectLevels(const DetailPyramid& pyramid, const std::vector<test::PlainPyramid>& plain) {
  for (std::size_t c = 0; c < plain.size(); ++c) {
    ASSERT_EQ(pyramid.levels + 1, plain[c].gauss.size());
    for (std::size_t i = 0; i <= pyramid.levels; ++i) {
      ASSERT_EQ(pyramid.gauss[c][i].samples, plain[c].gauss[i].samples) << i;
      if (i == pyramid.levels) continue;  // the coarsest has no detail
      ASSERT_EQ(pyramid.detail[c][i].samples, plain[c].detail[i].samples) << i;
    }
  }
}

// Both ways to the result: the pyramid and the whole step, on one thread and on several.
void ExpectSharpened(const SBxPicBuf& source, const Factors& sharp, const SBxPicBuf& expected) {
  SCOPED_TRACE(testing::Message() << source.width << "x" << source.height << "x" << source.components << "@"
                                  << source.bitsPerComponent << " by " << sharp[0]);
  const std::vector<test::PlainPyramid> plain = PlainPyramids(source);
  test::OnEverySimdTarget([&] {
    DetailPyramid pyramid;
    ASSERT_FALSE(DetailPyramid::Build(pyramid, source));
    ExpectLevels(pyramid, plain);
    PicBuf result = test::CopyOf(source);
    EXPECT_FALSE(DetailPyramid::Apply(result, pyramid, sharp[0], sharp[1], sharp[2]));
    EXPECT_TRUE(test::SamePicture(result, expected));
    for (const std::uint32_t threads : {1U, 3U}) {
      result = test::CopyOf(source);
      EXPECT_FALSE(SharpenPicture(result, sharp[0], sharp[1], sharp[2], threads));
      EXPECT_TRUE(test::SamePicture(result, expected)) << threads << " threads";
    }
  });
}

void ExpectPlain(const SBxPicBuf& source, const Factors& sharp) {
  ExpectSharpened(source, sharp, PlainSharpened(source, sharp));
}

TEST(DetailPyramid, EqualsPlainPyramidOnEverySize) {
  for (const int bits : {8, 16}) {
    for (int height = 1; height <= 12; ++height) {
      for (int width = 1; width <= 12; ++width) {
        ExpectPlain(test::RandomPicture(width, height, 1, bits, 50U * width + height), {2.0, 0.7, 1.5});
      }
    }
    for (const auto& [width, height] : {std::pair{19, 20}, {20, 20}, {21, 39}, {301, 97}, {11, 701}}) {
      ExpectPlain(test::PhotoLikePicture(width, height, 3, bits, width), {1.8, 1.3, 0.4});
    }
    // Strips are 512 coarse pixels wide.
    for (const int width : {1024, 1025, 1026, 1027, 1028, 1029, 1030, 2055}) {
      ExpectPlain(test::RandomPicture(width, 11, 1, bits, width), {1.8, 1.3, 0.4});
    }
  }
}

TEST(DetailPyramid, ClampsAndHandlesWhatIsNotANumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Factors factors[] = {{4.0, 4.0, 4.0},
                             {-3.0, 1.0, 1.0},
                             {0.0, 0.0, 0.0},
                             {infinity, 1e30, -infinity},
                             {std::nan(""), 1.0, 1.0}};
  for (const int bits : {8, 16}) {
    const PicBuf noise = test::RandomPicture(33, 26, 3, bits, 4);
    for (const Factors& sharp : factors) ExpectPlain(noise, sharp);
  }
}

TEST(DetailPyramid, FactorsNearOneChangeNothing) {
  const PicBuf picture = test::RandomPicture(64, 48, 3, 8, 3);
  for (const double factor : {1.0, 1.000009, 0.999991})
    ExpectSharpened(picture, {factor, 1.0, factor}, picture);
  const PicBuf truncated = PlainSharpened(picture, {1.0, 1.00002, 1.0});
  EXPECT_FALSE(test::SamePicture(truncated, picture));
  ExpectSharpened(picture, {1.0, 1.00002, 1.0}, truncated);
}

TEST(DetailPyramid, RefusesWhatDoesNotFit) {
  DetailPyramid pyramid;
  EXPECT_TRUE(DetailPyramid::Build(pyramid, PicBuf()));
  ASSERT_FALSE(DetailPyramid::Build(pyramid, test::RandomPicture(20, 21, 3, 8, 1)));
  EXPECT_EQ(std::tuple(pyramid.components, pyramid.levelWidth[2], pyramid.levelHeight[3]),
            std::tuple(3U, 5U, 2U));
  for (const auto& [width, height, bits] : {std::tuple{21, 21, 8}, {20, 20, 8}, {20, 21, 16}}) {
    PicBuf other = test::RandomPicture(width, height, 3, bits, 2);
    EXPECT_TRUE(DetailPyramid::Apply(other, pyramid, 2.0, 2.0, 2.0));
    EXPECT_TRUE(test::SamePicture(other, test::RandomPicture(width, height, 3, bits, 2)));
  }
  PicBuf empty;
  EXPECT_TRUE(SharpenPicture(empty, 2.0, 1.0, 1.0));
}

TEST(DetailPyramid, PlanesAreZeroedOrRefused) {
  constexpr int kLargest = std::numeric_limits<int>::max();
  FloatPlane plane;
  EXPECT_FALSE(plane.Allocate(6, 5));
  plane.samples.assign(30, 1.0F);
  EXPECT_FALSE(plane.Allocate(3, 4));
  EXPECT_EQ(plane.samples, std::vector<float>(12, 0.0F));
  EXPECT_FALSE(plane.Allocate(0, 3));
  EXPECT_TRUE(plane.Allocate(-1, 3));
  EXPECT_TRUE(plane.Allocate(kLargest, kLargest));  // more than the address space
  EXPECT_TRUE(plane.width == 0 && plane.height == 0 && plane.samples.empty());
}

}  // namespace
}  // namespace mirellon::engine
