// The card's context beside those of Qt, in one process.
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "gpu/open_card.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

// Qt's offscreen platform has contexts only where an X display is.
constexpr const char* kNoContext = "Qt gives no OpenGL context here: run this under xvfb-run";

class QtContext {
 public:
  QtContext() {
    if (!context_.create()) return;
    surface_.setFormat(context_.format());
    surface_.create();
    usable_ = MakeCurrent();
  }
  [[nodiscard]] bool usable() const { return usable_; }
  [[nodiscard]] bool MakeCurrent() { return context_.makeCurrent(&surface_); }
  void DoneCurrent() { context_.doneCurrent(); }

  void Clear(float red) {
    QOpenGLFunctions* gl = context_.functions();
    gl->glClearColor(red, 0.0F, 0.0F, 1.0F);
    gl->glClear(GL_COLOR_BUFFER_BIT);
  }
  // The red of a pixel, 0 to 255.
  [[nodiscard]] int Red() {
    unsigned char pixel[4] = {};
    context_.functions()->glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    return pixel[0];
  }

 private:
  QOpenGLContext context_;
  QOffscreenSurface surface_;
  bool usable_ = false;
};

// The filter on a tile of 12 x 8 pixels.
picture::PicBuf Filtered(gpu::GpuFilter& filter) {
  const picture::PicBuf padded = test::RandomPicture(24, 20, 1, 8, 1);
  picture::PicBuf result(12, 8, 1, 8);
  const gpu::GpuFilter::Job job(filter);
  EXPECT_FALSE(job.failed() || filter.Upload(padded, padded, 12, 8, 1, 3, 1, 8));
  filter.RenderDisplacement(0, -1, {1e6, 0.0, 0.0});
  filter.RenderDisplacement(0, 0, {1e6, 0.0, 0.0});
  EXPECT_FALSE(filter.ReadBack(result));
  return result;
}

TEST(CardBesideQt, NeitherContextDisturbsTheOther) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const picture::PicBuf expected = Filtered(card.filter);
  QtContext before;
  if (!before.usable()) GTEST_SKIP() << kNoContext;
  before.Clear(1.0F);
  // Qt's context stays current on its thread while the card works on another, where a second card comes and
  // goes.
  std::thread([&] {
    test::OpenCard other;
    ASSERT_USABLE(other);
    for (gpu::GpuFilter* filter : {&card.filter, &other.filter}) {
      EXPECT_TRUE(test::SamePicture(Filtered(*filter), expected));
    }
  }).join();
  EXPECT_EQ(before.Red(), 255);
  // Both on one thread, by turns.
  QtContext after;
  ASSERT_TRUE(after.usable());
  after.Clear(0.0F);
  for (int run = 0; run < 3; ++run) {
    after.DoneCurrent();
    EXPECT_TRUE(test::SamePicture(Filtered(card.filter), expected));
    ASSERT_TRUE(before.MakeCurrent());
    EXPECT_EQ(before.Red(), 255);
    ASSERT_TRUE(after.MakeCurrent());
    EXPECT_EQ(after.Red(), 0);
  }
  EXPECT_EQ(card.windows.shown, std::vector<std::string>());
}

// Where Qt's context is one of GLX, the card's cannot be made current before Qt's is released: such a job
// fails, and nothing else comes of it.
TEST(CardBesideQt, AThreadThatQtHoldsCostsAJobAtMost) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const picture::PicBuf expected = Filtered(card.filter);
  QtContext held;
  if (!held.usable()) GTEST_SKIP() << kNoContext;
  held.Clear(1.0F);
  const bool failed = gpu::GpuFilter::Job(card.filter).failed();
  EXPECT_EQ(card.windows.shown.size(), failed ? 1U : 0U);
  ASSERT_TRUE(held.MakeCurrent());
  EXPECT_EQ(held.Red(), 255);
  held.DoneCurrent();
  EXPECT_TRUE(test::SamePicture(Filtered(card.filter), expected));
}

}  // namespace
}  // namespace mirellon

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
