#include "ui/model/thumbnail.h"

#include <string>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::ui {
namespace {

// The first component of each pixel, row by row, rows parted by a blank.
std::string Rows(const picture::SBxPicBuf& picture) {
  std::string rows;
  for (int y = 0; y < picture.height; ++y) {
    if (y > 0) rows += ' ';
    for (int x = 0; x < picture.width; ++x) rows += static_cast<char>(test::Sample(picture, x, y));
  }
  return rows;
}

TEST(ThumbnailTest, TurnsThePhotographUpright) {
  // As stored: "abc" over "def".
  const picture::PicBuf stored =
      test::MadeOf(3, 2, 1, 8, [](int x, int y, int) { return static_cast<unsigned>('a' + x + 3 * y); });
  EXPECT_EQ(Rows(MakeThumbnail(stored, 100, Orientation::kUpright)), "abc def");
  EXPECT_EQ(Rows(MakeThumbnail(stored, 100, OrientationOf(6))), "da eb fc");
}

TEST(ThumbnailTest, AveragesAndKeepsTheProportions) {
  for (const int bits : {8, 16}) {
    for (const int components : {1, 3}) {
      const unsigned unit = bits == 8 ? 1 : 257;
      const picture::PicBuf large = test::MadeOf(400, 100, components, bits, [&](int x, int y, int c) {
        return ((x + y) % 2 == 0 ? 100U : 60U) * unit + static_cast<unsigned>(c) * 10 * unit;
      });
      const picture::PicBuf small = MakeThumbnail(large, 80, OrientationOf(6));
      ASSERT_EQ(small->width, 20);
      ASSERT_EQ(small->height, 80);
      ASSERT_EQ(small->components, 3);
      for (int c = 0; c < 3; ++c) {
        const unsigned expected = 80 + (components == 3 ? 10U * static_cast<unsigned>(c) : 0);
        EXPECT_NEAR(test::Sample(small, 7, 70, c), expected, 2) << bits << ' ' << components;
      }
    }
  }
}

TEST(ThumbnailTest, ExtremeSizes) {
  EXPECT_TRUE(MakeThumbnail(picture::PicBuf(), 100, Orientation::kUpright).empty());
  const picture::PicBuf line = test::ConstantPicture(5000, 1, 3, 8, 9);
  const picture::PicBuf small = MakeThumbnail(line, 50, OrientationOf(8));
  EXPECT_EQ(small->width, 1);
  EXPECT_EQ(small->height, 50);
  EXPECT_EQ(test::Sample(small, 0, 49), 9U);
  EXPECT_EQ(MakeThumbnail(test::ConstantPicture(1, 1, 1, 16, 0xFFFF), 50, Orientation::kUpright)->width, 1)
      << "never enlarged";
}

}  // namespace
}  // namespace mirellon::ui
