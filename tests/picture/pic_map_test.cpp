#include "picture/pic_map.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

void ExpectDestination(const CBxPicMap& map, double sourceX, double sourceY, int wantedX, int wantedY) {
  CBxPoint<int> point{};
  map.MapPointSrcToDst(&point.x, &point.y, sourceX, sourceY);
  EXPECT_EQ(std::pair(point.x, point.y), std::pair(wantedX, wantedY)) << sourceX << ", " << sourceY;
}

TEST(PicMap, MapsByHand) {
  const double quarter = std::numbers::pi / 2;
  const double infinity = std::numeric_limits<double>::infinity();
  const std::tuple<CBxPicMap, int, int, double, double> cases[] = {
      {CBxPicMap(), 3, 4, 3.5, 4.5},
      {CBxPicMap(0, 0, 0, 0, 1, 0), -1, 0, -0.5, 0.5},
      {CBxPicMap(100, 50, 20, 30, 2, 0), 100, 50, 20.25, 30.25},
      {CBxPicMap(100, 50, 20, 30, 0.5, 0), 109, 49, 39, 29},
      // A quarter turn takes the source's x axis to the destination's y axis: what lies below the centre of
      // the window lay right of the centre of the picture.
      {CBxPicMap(10.5, 10.5, 0, 0, 1, quarter), 10, 13, 3, 0},
      {CBxPicMap(10.5, 10.5, 7, 7, 4, 2 * quarter), 14, 18, 6, 5},
      // A zoom or rotation that means nothing is left out.
      {CBxPicMap(5, 5, 1, 1, -2, 0), 5, 5, 1.5, 1.5},
      {CBxPicMap(5, 5, 1, 1, std::nan(""), std::nan("")), 5, 5, 1.5, 1.5},
      {CBxPicMap(5, 5, 1, 1, infinity, -infinity), 5, 5, 1.5, 1.5}};
  for (const auto& [map, x, y, wantedX, wantedY] : cases) {
    CBxPoint<double> source{};
    map.MapPointDstToSrc(&source.x, &source.y, x, y);
    EXPECT_NEAR(source.x, wantedX, 1e-12) << x << ", " << y;
    EXPECT_NEAR(source.y, wantedY, 1e-12) << x << ", " << y;
  }
}

TEST(PicMap, ThereAndBackForAnyMapping) {
  test::Random random(11);
  for (int i = 0; i < 2000; ++i) {
    const CBxPicMap map(1000 * random.Unit(), 800 * random.Unit(), 6000 * random.Unit(), 4000 * random.Unit(),
                        0.05 + 8 * random.Unit(), 7 * random.Unit() - 3.5);
    const int x = random.Below(3000) - 1000;
    const int y = random.Below(3000) - 1000;
    CBxPoint<double> source{};
    map.MapPointDstToSrc(&source.x, &source.y, x, y);
    ExpectDestination(map, source.x, source.y, x, y);
  }
}

TEST(PicMap, SaturatesFarPositions) {
  constexpr int kLeast = std::numeric_limits<int>::min();
  constexpr int kLargest = std::numeric_limits<int>::max();
  const CBxPicMap map(0, 0, 0, 0, 8, 0);
  ExpectDestination(map, 1e300, -1e300, kLargest, kLeast);
  ExpectDestination(map, -1e9, 1e9, kLeast, kLargest);
  ExpectDestination(map, std::nan(""), std::nan(""), 0, 0);
  ExpectDestination(map, 0.99, -0.01, 7, -1);
}

}  // namespace
}  // namespace mirellon::picture
