#include "engine/pyramid_plane.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "engine/plain_pyramid.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

FloatPlane MakePlane(int width, int height) {
  FloatPlane plane;
  EXPECT_FALSE(plane.Allocate(width, height));
  return plane;
}

// Values whose sums depend on the order of adding.
FloatPlane RandomPlane(int width, int height, std::uint64_t seed) {
  FloatPlane plane = MakePlane(width, height);
  test::Random random(seed);
  for (float& value : plane.samples) {
    value = static_cast<float>((random.Unit() - 0.3) * (random.Below(2) == 0 ? 65535.0 : 1.0));
  }
  return plane;
}

void ExpectSameBits(const FloatPlane& actual, const FloatPlane& expected) {
  ASSERT_EQ(actual.width, expected.width);
  ASSERT_EQ(actual.height, expected.height);
  for (int y = 0; y < actual.height; ++y) {
    for (int x = 0; x < actual.width; ++x) {
      const float got = actual.Row(y)[x];
      const float wanted = expected.Row(y)[x];
      ASSERT_EQ(std::bit_cast<std::uint32_t>(got), std::bit_cast<std::uint32_t>(wanted))
          << got << " instead of " << wanted << " at (" << x << ", " << y << ") of " << actual.width << "x"
          << actual.height;
    }
  }
}

// All four steps between a fine plane and one of `coarseWidth` x `coarseHeight`.
void CheckSteps(int width, int height, int coarseWidth, int coarseHeight) {
  SCOPED_TRACE(testing::Message() << width << "x" << height << " and " << coarseWidth << "x" << coarseHeight);
  const FloatPlane fine = RandomPlane(width, height, 7U * width + height);
  const FloatPlane noise = RandomPlane(coarseWidth, coarseHeight, 3);

  FloatPlane reduced = noise;  // what is not written must keep its value
  FloatPlane plainReduced = noise;
  Reduce5x5(fine, reduced);
  if (width >= 5 && height >= 5) test::PlainReduce(fine, plainReduced);
  ExpectSameBits(reduced, plainReduced);

  FloatPlane expanded = fine;
  FloatPlane plainExpanded = fine;
  Expand5x5(noise, expanded);
  test::PlainExpand(noise, plainExpanded);
  ExpectSameBits(expanded, plainExpanded);

  const bool large = width >= 5 && height >= 5;
  FloatPlane wantedDetail = fine;
  FloatPlane wantedSum = fine;
  for (std::size_t i = 0; large && i < fine.samples.size(); ++i) {
    wantedDetail.samples[i] = fine.samples[i] - plainExpanded.samples[i];
    wantedSum.samples[i] = plainExpanded.samples[i] + 1.3F * fine.samples[i];
  }
  FloatPlane apart = MakePlane(width, height);
  SubtractExpanded5x5(noise, fine, apart);
  if (large) ExpectSameBits(apart, wantedDetail);
  FloatPlane inPlace = fine;
  SubtractExpanded5x5(noise, inPlace, inPlace);
  ExpectSameBits(inPlace, wantedDetail);

  AddExpanded5x5(noise, fine, 1.3F, apart);
  if (large) ExpectSameBits(apart, wantedSum);
  inPlace = fine;
  AddExpanded5x5(noise, inPlace, 1.3F, inPlace);
  ExpectSameBits(inPlace, wantedSum);
}

TEST(PyramidPlane, StepsEqualPlainLoopsOnEverySize) {
  for (int height = 1; height <= 24; ++height) {
    for (int width = 1; width <= 24; ++width) CheckSteps(width, height, width / 2, height / 2);
  }
  CheckSteps(40, 33, 20, 16);
  // Strips are 512 coarse pixels wide.
  for (const int width : {1022, 1023, 1024, 1025, 1026, 1027, 1028, 1029, 1030, 2051, 2055}) {
    CheckSteps(width, 11, width / 2, 5);
  }
  CheckSteps(11, 701, 5, 350);
}

TEST(PyramidPlane, StepsBearOtherProportions) {
  for (const int coarse : {1, 2, 5, 6, 9, 20, 30}) {
    CheckSteps(21, 22, coarse, coarse);
    CheckSteps(13, 12, coarse, 6);
    CheckSteps(13, 12, 6, coarse);
  }
}

TEST(PyramidPlane, ConstantStaysConstantInside) {
  FloatPlane fine = MakePlane(40, 31);
  std::fill(fine.samples.begin(), fine.samples.end(), 100.0F);
  FloatPlane coarse = MakePlane(20, 15);
  Reduce5x5(fine, coarse);
  for (const float value : coarse.samples) EXPECT_NEAR(value, 100.0F, 1e-4);
  FloatPlane expanded = MakePlane(40, 31);
  Expand5x5(coarse, expanded);
  for (int y = 3; y < 28; ++y) {
    for (int x = 3; x < 37; ++x) EXPECT_NEAR(expanded.Row(y)[x], 100.0F, 1e-4);
  }
}

TEST(PyramidPlane, AllocationZeroesOrFails) {
  FloatPlane plane = RandomPlane(6, 5, 1);
  EXPECT_FALSE(plane.Allocate(3, 4));
  EXPECT_EQ(plane.samples, std::vector<float>(12, 0.0F));
  EXPECT_FALSE(plane.Allocate(0, 3));
  EXPECT_TRUE(plane.samples.empty());
  EXPECT_TRUE(plane.Allocate(-1, 3));
  // More than the address space: refused before anything is touched.
  EXPECT_TRUE(plane.Allocate(std::numeric_limits<int>::max(), std::numeric_limits<int>::max()));
  EXPECT_EQ(plane.width, 0);
  EXPECT_EQ(plane.height, 0);
  EXPECT_TRUE(plane.samples.empty());
}

}  // namespace
}  // namespace mirellon::engine
