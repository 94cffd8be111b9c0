#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "picture/pic_map.h"
#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

struct Mode {
  const char* name;
  void (*transform)(SBxPicBuf&, const SBxPicBuf&, const CBxPicMap&);
  double (*weigh)(double distance);  // of a sample that far from the position; null for the nearest
};

double WeighLinear(double distance) {
  return std::max(0.0, 1.0 - std::fabs(distance));
}

// The cubic convolution kernel with a = -0.5.
double WeighCubic(double distance) {
  const double d = std::fabs(distance);
  if (d < 1.0) return 1.5 * d * d * d - 2.5 * d * d + 1.0;
  if (d < 2.0) return -0.5 * d * d * d + 2.5 * d * d - 4.0 * d + 2.0;
  return 0.0;
}

const std::array<Mode, 3> kModes = {Mode{"constant", &CBxPicBufAPI::TransformConstantFast, nullptr},
                                    Mode{"bilinear", &CBxPicBufAPI::TransformBilinearFast, &WeighLinear},
                                    Mode{"bicubic", &CBxPicBufAPI::TransformBicubicFast, &WeighCubic}};

// The value at a position, from kernel weights over every sample near it, in double precision.
double PlainValue(const SBxPicBuf& source, const Mode& mode, double x, double y, int c) {
  if (mode.weigh == nullptr) {
    return test::Sample(source, static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)), c);
  }
  double sum = 0.0;
  const int left = static_cast<int>(std::floor(x));
  const int top = static_cast<int>(std::floor(y));
  for (int j = top - 3; j <= top + 3; ++j) {
    for (int i = left - 3; i <= left + 3; ++i) {
      const double weight = mode.weigh(i + 0.5 - x) * mode.weigh(j + 0.5 - y);
      if (weight == 0.0) continue;
      sum += weight *
             test::Sample(source, std::clamp(i, 0, source.width - 1), std::clamp(j, 0, source.height - 1), c);
    }
  }
  return std::clamp(sum, 0.0, source.bitsPerComponent == 8 ? 255.0 : 65535.0);
}

// Every drawn sample within rounding of the plain value, everything else still as it was.
void ExpectPlain(const SBxPicBuf& drawn, const SBxPicBuf& before, const SBxPicBuf& source, const Mode& mode,
                 const CBxPicMap& map) {
  const double tolerance = source.bitsPerComponent == 8 ? 0.501 : 0.6;
  for (int y = 0; y < drawn.height; ++y) {
    for (int x = 0; x < drawn.width; ++x) {
      CBxPoint<double> at{};
      map.MapPointDstToSrc(&at.x, &at.y, x, y);
      const bool inside = at.x >= 0 && at.x < source.width && at.y >= 0 && at.y < source.height;
      for (int c = 0; c < drawn.components; ++c) {
        const double value = test::Sample(drawn, x, y, c);
        if (inside) {
          ASSERT_NEAR(value, PlainValue(source, mode, at.x, at.y, c), tolerance) << x << ", " << y;
        } else {
          ASSERT_EQ(value, test::Sample(before, x, y, c)) << x << ", " << y;
        }
      }
    }
  }
}

PicBuf CopyOf(const SBxPicBuf& picture) {
  PicBuf copy;
  CBxPicBufAPI::Copy(copy, picture);
  return copy;
}

class Transform : public ::testing::TestWithParam<std::tuple<int, int, int>> {
 protected:
  [[nodiscard]] static const Mode& mode() {
    return kModes[static_cast<std::size_t>(std::get<0>(GetParam()))];
  }
  [[nodiscard]] static int components() { return std::get<1>(GetParam()); }
  [[nodiscard]] static int bits() { return std::get<2>(GetParam()); }
};

TEST_P(Transform, IdentityReproducesThePicture) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {37, 22}}) {
    const PicBuf source = test::RandomPicture(width, height, components(), bits(), 3);
    PicBuf drawn = test::RandomPicture(width, height, components(), bits(), 4);
    mode().transform(drawn, source, CBxPicMap());
    EXPECT_TRUE(test::SamePicture(drawn, source));
  }
  // Moved by whole pixels, through the way of a turned mapping as well.
  const PicBuf source = test::RandomPicture(20, 20, components(), bits(), 5);
  for (const double rotation : {0.0, 1e-300}) {
    PicBuf drawn = test::ConstantPicture(20, 20, components(), bits(), 9);
    mode().transform(drawn, source, CBxPicMap(13, 4, 10, 10, 1, rotation));
    EXPECT_EQ(test::Sample(drawn, 3, 0), test::Sample(source, 0, 6));
    EXPECT_EQ(test::Sample(drawn, 19, 13), test::Sample(source, 16, 19));
    EXPECT_EQ(test::Sample(drawn, 2, 0), 9U);
    EXPECT_EQ(test::Sample(drawn, 19, 14), 9U);
  }
}

TEST_P(Transform, EqualsKernelSumsAndBothWaysAgree) {
  test::Random random(17);
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {3, 5}, {40, 31}}) {
    const PicBuf source = test::RandomPicture(width, height, components(), bits(), 6);
    const PicBuf before = test::RandomPicture(45, 38, components(), bits(), 7);
    for (int round = 0; round < 12; ++round) {
      const double zoom = std::exp2(8 * random.Unit() - 3);
      const double sourceX = width * random.Unit();
      const double sourceY = height * random.Unit();
      const CBxPicMap upright(45 * random.Unit(), 38 * random.Unit(), sourceX, sourceY, zoom, 0);
      PicBuf drawn = CopyOf(before);
      mode().transform(drawn, source, upright);
      ASSERT_NO_FATAL_FAILURE(ExpectPlain(drawn, before, source, mode(), upright)) << "zoom " << zoom;

      const CBxPicMap turned(22, 19, sourceX, sourceY, zoom, 6.3 * random.Unit());
      drawn = CopyOf(before);
      mode().transform(drawn, source, turned);
      ASSERT_NO_FATAL_FAILURE(ExpectPlain(drawn, before, source, mode(), turned)) << "zoom " << zoom;

      // Too small a turn to move anything, but one that takes the way of turned mappings.
      const CBxPicMap straight(22.3, 19.8, sourceX, sourceY, zoom, 0);
      const CBxPicMap barelyTurned(22.3, 19.8, sourceX, sourceY, zoom, 1e-300);
      drawn = CopyOf(before);
      PicBuf other = CopyOf(before);
      mode().transform(drawn, source, straight);
      mode().transform(other, source, barelyTurned);
      ASSERT_TRUE(test::SamePicture(drawn, other)) << "zoom " << zoom;
    }
  }
}

TEST_P(Transform, EdgeBelongsToTheFirstPixelOnly) {
  // Positions fall on whole numbers: 0 is inside, the width and the height are not.
  const PicBuf source = test::RandomPicture(12, 12, components(), bits(), 12);
  for (const CBxPicMap& map : {CBxPicMap(4.5, 3.5, 0, 0, 1, 0), CBxPicMap(9.5, 8.5, 12, 12, 1, 0)}) {
    const PicBuf before = test::RandomPicture(14, 14, components(), bits(), 13);
    PicBuf drawn = CopyOf(before);
    mode().transform(drawn, source, map);
    ExpectPlain(drawn, before, source, mode(), map);
  }
}

TEST_P(Transform, BearsAnyMapping) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double values[] = {0.0, 3.5, -1e9, 1e18, 1e300, -1e300, infinity, -infinity, std::nan("")};
  const PicBuf source = test::ConstantPicture(7, 5, components(), bits(), 100);
  for (const double position : values) {
    for (const double other : values) {
      for (const double zoom : {1e-300, 1e-3, 1.0, 1e9, 1e300}) {
        for (const double rotation : {0.0, 0.5, 1e300}) {
          PicBuf drawn = test::ConstantPicture(9, 9, components(), bits(), 100);
          mode().transform(drawn, source, CBxPicMap(other, position, position, other, zoom, rotation));
          // Nothing but the source's one value can have been drawn.
          ASSERT_TRUE(test::SamePicture(drawn, test::ConstantPicture(9, 9, components(), bits(), 100)));
        }
      }
    }
  }
}

TEST_P(Transform, KeepsToTheRowsOfAPaddedPicture) {
  const int pixelBytes = components() * bits() / 8;
  const int stride = 10 * pixelBytes + 6;
  std::vector<unsigned char> storage(static_cast<std::size_t>(stride) * 8, 0xAB);
  SBxPicBuf window{storage.data(), static_cast<int>(storage.size()), stride, 10, 8, components(), bits()};
  const PicBuf source = test::RandomPicture(30, 30, components(), bits(), 8);
  const CBxPicMap map(5, 4, 15, 15, 1.7, 0);
  mode().transform(window, source, map);
  PicBuf expected(10, 8, components(), bits());
  mode().transform(expected, source, map);
  EXPECT_TRUE(test::SamePicture(window, expected));
  for (int y = 0; y < 8; ++y) {
    for (int i = 10 * pixelBytes; i < stride; ++i) {
      ASSERT_EQ(storage[static_cast<std::size_t>(y * stride + i)], 0xAB);
    }
  }
}

TEST_P(Transform, LeavesPicturesOfOtherKindsAlone) {
  const PicBuf before = test::RandomPicture(6, 6, components(), bits(), 1);
  PicBuf drawn = CopyOf(before);
  mode().transform(drawn, test::RandomPicture(6, 6, 4 - components(), bits(), 2), CBxPicMap());
  mode().transform(drawn, test::RandomPicture(6, 6, components(), 24 - bits(), 2), CBxPicMap());
  mode().transform(drawn, PicBuf(), CBxPicMap());
  EXPECT_TRUE(test::SamePicture(drawn, before));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Transform,
    ::testing::Combine(::testing::Values(0, 1, 2), ::testing::Values(1, 3), ::testing::Values(8, 16)),
    [](const auto& kind) {
      return std::string(kModes[static_cast<std::size_t>(std::get<0>(kind.param))].name) +
             std::to_string(std::get<1>(kind.param)) + "x" + std::to_string(std::get<2>(kind.param));
    });

}  // namespace
}  // namespace mirellon::picture
