#include "ui/model/orientation.h"

#include <string>
#include <vector>

#include "support/test_pictures.h"
#include "ui/model/display_picture.h"

namespace mirellon::ui {
namespace {

using picture::PicBuf;

PicBuf Drawn(const std::vector<std::string>& rows) {
  return test::MadeOf(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), 3, 8,
                      [&](int x, int y, int c) {
                        const char letter = rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
                        return static_cast<unsigned>(letter + 50 * c);
                      });
}

struct Case {
  int exif;
  std::vector<std::string> stored;
};

// Where first row and first column of the stored picture belong is what EXIF's numbers say.
const std::vector<std::string> kUpright = {"ABC", "DEF"};
const std::vector<Case> kCases = {
    {1, {"ABC", "DEF"}},      // top, left
    {2, {"CBA", "FED"}},      // top, right
    {3, {"FED", "CBA"}},      // bottom, right
    {4, {"DEF", "ABC"}},      // bottom, left
    {5, {"AD", "BE", "CF"}},  // left, top
    {6, {"CF", "BE", "AD"}},  // right, top
    {7, {"FC", "EB", "DA"}},  // right, bottom
    {8, {"DA", "EB", "FC"}},  // left, bottom
    {0, {"ABC", "DEF"}},     {9, {"ABC", "DEF"}}, {-1, {"ABC", "DEF"}},
};

TEST(OrientationTest, TurnsEveryKindUpright) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.exif);
    EXPECT_TRUE(test::SamePicture(Upright(OrientationOf(c.exif), Drawn(c.stored)), Drawn(kUpright)));
  }
}

TEST(OrientationTest, FindsRectanglesInTheStoredPicture) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.exif);
    const Orientation orientation = OrientationOf(c.exif);
    const int width = static_cast<int>(c.stored[0].size());
    const int height = static_cast<int>(c.stored.size());
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < 3; ++x) {
        const PictureRect pixel{x, y, x + 1, y + 1};
        const PictureRect stored = StoredRect(orientation, width, height, pixel);
        EXPECT_EQ(c.stored[static_cast<std::size_t>(stored.top)][static_cast<std::size_t>(stored.left)],
                  kUpright[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
      }
    }
    const PictureRect wide = StoredRect(orientation, width, height, {0, 0, 2, 1});
    EXPECT_EQ((wide.right - wide.left) * (wide.bottom - wide.top), 2);
  }
}

TEST(OrientationTest, LargePicturesAreTurnedWhole) {
  const PicBuf stored = test::RandomPicture(150, 131, 3, 8, 4);
  const PicBuf upright = test::MadeOf(
      131, 150, 3, 8, [&](int x, int y, int c) { return test::Sample(stored, y, 131 - 1 - x, c); });
  const SharedDisplay display = MakeDisplay(stored, {nullptr, Orientation::kQuarterLeft});
  EXPECT_TRUE(test::SamePicture(display->level(0), upright));
  EXPECT_EQ(display->level(1).width, 65);
}

}  // namespace
}  // namespace mirellon::ui
