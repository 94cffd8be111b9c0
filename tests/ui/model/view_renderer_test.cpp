#include "ui/model/view_renderer.h"

#include "support/test_pictures.h"

namespace mirellon::ui {
namespace {

using picture::PicBuf;
using test::Sample;

constexpr unsigned kBackground = 35;

ViewGeometry AtFullSize(int viewWidth, int viewHeight, int width, int height) {
  ViewGeometry geometry;
  geometry.SetViewSize(viewWidth, viewHeight);
  geometry.SetPictureSize(width, height);
  geometry.CentreOn(width / 2.0, height / 2.0);
  return geometry;
}

SharedDisplay Constant(int width, int height, unsigned value) {
  return MakeDisplay(test::ConstantPicture(width, height, 3, 8, value));
}

TEST(ViewRendererTest, DrawsOnlyTheBackgroundWithoutAPicture) {
  ViewRenderer renderer;
  const ViewGeometry geometry = AtFullSize(20, 10, 0, 0);
  EXPECT_TRUE(renderer.RenderView(geometry, kDrawResult));
  renderer.SetBackground(190);
  EXPECT_TRUE(renderer.RenderView(geometry, kDrawOriginal));
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), test::ConstantPicture(20, 10, 3, 8, 190).record()));
}

TEST(ViewRendererTest, ShowsSamplesAsTheyAreAtFullSize) {
  const PicBuf photograph = test::RandomPicture(20, 10, 3, 8, 1);
  ViewRenderer renderer;
  renderer.SetPicture(kDrawOriginal, MakeDisplay(photograph));
  renderer.SetPicture(kDrawResult, Constant(20, 10, 7));
  const ViewGeometry geometry = AtFullSize(20, 10, 20, 10);
  EXPECT_FALSE(renderer.RenderView(geometry, kDrawOriginal));
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), photograph));
  EXPECT_FALSE(renderer.RenderView(geometry, kDrawResult, false));
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), photograph)) << "not asked to redraw";
  EXPECT_FALSE(renderer.RenderView(geometry, kDrawResult));
  EXPECT_EQ(Sample(renderer.buffer(), 3, 3), 7U);
  EXPECT_TRUE(renderer.RenderView(geometry, kDrawNothing));
  EXPECT_EQ(Sample(renderer.buffer(), 3, 3), kBackground);
}

TEST(ViewRendererTest, PreviewCoversItsPartOfTheResultOnly) {
  ViewRenderer renderer;
  renderer.SetPicture(kDrawOriginal, Constant(30, 20, 50));
  renderer.SetPicture(kDrawResult, Constant(30, 20, 100));
  renderer.SetPatch(ViewRenderer::Patch{{10, 5, 14, 9}, Constant(4, 4, 200)});
  const ViewGeometry geometry = AtFullSize(30, 20, 30, 20);
  renderer.RenderView(geometry, kDrawResult);
  const PicBuf expected = test::MadeOf(
      30, 20, 3, 8, [](int x, int y, int) { return x >= 10 && x < 14 && y >= 5 && y < 9 ? 200U : 100U; });
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), expected));
  renderer.RenderView(geometry, kDrawOriginal);
  EXPECT_EQ(Sample(renderer.buffer(), 11, 6), 50U);
  renderer.SetSplit(12);
  renderer.RenderView(geometry, kDrawResult);
  EXPECT_EQ(Sample(renderer.buffer(), 11, 6), 50U) << "the original left of the line";
  EXPECT_EQ(Sample(renderer.buffer(), 12, 6), 200U);
}

TEST(ViewRendererTest, InvertsTheRectanglesOutlineWithoutItsCorners) {
  ViewRenderer renderer;
  renderer.SetPicture(kDrawResult, Constant(30, 20, 100));
  const ViewGeometry geometry = AtFullSize(30, 20, 30, 20);
  struct Case {
    PictureRect rect;
    int left, top, right, bottom;  // in the view
  };
  for (const Case& c : {Case{{4, 3, 20, 15}, 4, 3, 20, 15}, Case{{-6, 3, 20, 40}, -6, 3, 20, 40}}) {
    renderer.SetRectangle(c.rect);
    renderer.RenderView(geometry, kDrawResult);
    const PicBuf expected = test::MadeOf(30, 20, 3, 8, [&](int x, int y, int) {
      const bool inside = x >= c.left && x < c.right && y >= c.top && y < c.bottom;
      const bool column = x < c.left + 2 || x >= c.right - 2;
      const bool row = y < c.top + 2 || y >= c.bottom - 2;
      return inside && column != row ? 155U : 100U;
    });
    EXPECT_TRUE(test::SamePicture(renderer.buffer(), expected));
  }
}

TEST(ViewRendererTest, DrawsSmallViewsFromHalves) {
  const PicBuf photograph = test::RandomPicture(256, 128, 3, 8, 3);
  const SharedDisplay display = MakeDisplay(photograph);
  struct Case {
    double zoom;
    int level;
  };
  for (const Case& c : {Case{4.0, 0}, Case{1.0, 0}, Case{0.51, 0}, Case{0.5, 1}, Case{0.26, 1}, Case{0.25, 2},
                        Case{1e-9, 7}}) {
    EXPECT_EQ(display->LevelFor(c.zoom), c.level) << c.zoom;
  }
  EXPECT_EQ(display->level(7).width, 2);
  EXPECT_EQ(display->level(7).height, 1);
  const unsigned sum = Sample(photograph, 2, 4) + Sample(photograph, 3, 4) + Sample(photograph, 2, 5) +
                       Sample(photograph, 3, 5);
  EXPECT_EQ(Sample(display->level(1), 1, 2), (sum + 2) / 4);
  ViewRenderer renderer;
  renderer.SetPicture(kDrawResult, display);
  ViewGeometry geometry = AtFullSize(64, 32, 256, 128);
  geometry.SetZoom(0.25);
  renderer.RenderView(geometry, kDrawResult);
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), display->level(2)));
}

TEST(ViewRendererTest, ShowsWhatWasTakenAway) {
  ViewRenderer renderer;
  renderer.SetPicture(kDrawOriginal, Constant(10, 10, 60));
  renderer.SetPicture(kDrawResult, Constant(10, 10, 50));
  renderer.SetPatch(ViewRenderer::Patch{{0, 0, 2, 2}, Constant(2, 2, 200)});
  renderer.RenderView(AtFullSize(20, 10, 10, 10), kDrawNoise);
  const PicBuf expected = test::MadeOf(20, 10, 3, 8, [](int x, int y, int) {
    if (x < 5 || x >= 15) return kBackground;
    return x < 7 && y < 2 ? 0U : 168U;
  });
  EXPECT_TRUE(test::SamePicture(renderer.buffer(), expected));
}

TEST(DisplayPictureTest, TakesEveryKind) {
  const SharedDisplay deep = MakeDisplay(test::ConstantPicture(5, 3, 1, 16, 0x8123));
  ASSERT_NE(deep, nullptr);
  EXPECT_TRUE(test::SamePicture(deep->level(0), test::ConstantPicture(5, 3, 3, 8, 0x81).record()));
  EXPECT_EQ(MakeDisplay(PicBuf()), nullptr);
}

}  // namespace
}  // namespace mirellon::ui
