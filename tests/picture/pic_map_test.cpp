#include "picture/pic_map.h"

#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

CBxPoint<double> ToSource(const CBxPicMap& map, int x, int y) {
  CBxPoint<double> point{};
  map.MapPointDstToSrc(&point.x, &point.y, x, y);
  return point;
}

CBxPoint<int> ToDestination(const CBxPicMap& map, double x, double y) {
  CBxPoint<int> point{};
  map.MapPointSrcToDst(&point.x, &point.y, x, y);
  return point;
}

TEST(PicMap, MapsByHand) {
  const double quarter = std::numbers::pi / 2;
  struct Case {
    CBxPicMap map;
    int x, y;
    double sourceX, sourceY;
  };
  const Case cases[] = {
      {CBxPicMap(), 3, 4, 3.5, 4.5},
      {CBxPicMap(0, 0, 0, 0, 1, 0), -1, 0, -0.5, 0.5},
      {CBxPicMap(100, 50, 20, 30, 2, 0), 100, 50, 20.25, 30.25},
      {CBxPicMap(100, 50, 20, 30, 0.5, 0), 109, 49, 39, 29},
      // A quarter turn takes the source's x axis to the destination's y axis: what lies below the centre of
      // the window lay right of the centre of the picture.
      {CBxPicMap(10.5, 10.5, 0, 0, 1, quarter), 10, 13, 3, 0},
      {CBxPicMap(10.5, 10.5, 0, 0, 1, quarter), 13, 10, 0, -3},
      {CBxPicMap(10.5, 10.5, 7, 7, 4, 2 * quarter), 14, 18, 6, 5},
      // A zoom or rotation that means nothing is left out.
      {CBxPicMap(5, 5, 1, 1, 0, 0), 5, 5, 1.5, 1.5},
      {CBxPicMap(5, 5, 1, 1, -2, 0), 5, 5, 1.5, 1.5},
      {CBxPicMap(5, 5, 1, 1, kNan, kNan), 5, 5, 1.5, 1.5},
      {CBxPicMap(5, 5, 1, 1, kInfinity, -kInfinity), 5, 5, 1.5, 1.5},
  };
  for (const Case& c : cases) {
    const CBxPoint<double> source = ToSource(c.map, c.x, c.y);
    EXPECT_NEAR(source.x, c.sourceX, 1e-12) << c.x << ", " << c.y;
    EXPECT_NEAR(source.y, c.sourceY, 1e-12) << c.x << ", " << c.y;
    const CBxPoint<int> back = ToDestination(c.map, source.x, source.y);
    EXPECT_EQ(back.x, c.x);
    EXPECT_EQ(back.y, c.y);
  }
}

TEST(PicMap, ThereAndBackForAnyMapping) {
  test::Random random(11);
  CBxPicMap map;
  for (int i = 0; i < 2000; ++i) {
    map.Compute(1000 * random.Unit(), 800 * random.Unit(), 6000 * random.Unit(), 4000 * random.Unit(),
                0.05 + 8 * random.Unit(), 7 * random.Unit() - 3.5);
    const int x = random.Below(3000) - 1000;
    const int y = random.Below(3000) - 1000;
    const CBxPoint<double> source = ToSource(map, x, y);
    const CBxPoint<int> back = ToDestination(map, source.x, source.y);
    ASSERT_EQ(back.x, x);
    ASSERT_EQ(back.y, y);
  }
}

TEST(PicMap, PointUnderThePointerStays) {
  // As the wheel does it: the pointer's source position becomes the source centre, the pointer's pixel
  // centre the destination centre.
  CBxPicMap map(640, 400, 3000.25, 2000.75, 0.31, 0);
  const CBxPoint<double> before = ToSource(map, 123, 456);
  map.Compute(123.5, 456.5, before.x, before.y, 0.31 * 1.2, 0);
  const CBxPoint<double> after = ToSource(map, 123, 456);
  EXPECT_EQ(after.x, before.x);
  EXPECT_EQ(after.y, before.y);
}

TEST(PicMap, SaturatesFarPositions) {
  constexpr int kLeast = std::numeric_limits<int>::min();
  constexpr int kLargest = std::numeric_limits<int>::max();
  const CBxPicMap map(0, 0, 0, 0, 8, 0);
  EXPECT_EQ(ToDestination(map, 1e300, -1e300).x, kLargest);
  EXPECT_EQ(ToDestination(map, 1e300, -1e300).y, kLeast);
  EXPECT_EQ(ToDestination(map, 1e9, -1e9).x, kLargest);
  EXPECT_EQ(ToDestination(map, 1e9, -1e9).y, kLeast);
  EXPECT_EQ(ToDestination(map, kNan, 0.99).x, 0);
  EXPECT_EQ(ToDestination(CBxPicMap(), 0.0, -0.01).y, -1);
}

}  // namespace
}  // namespace mirellon::picture
