#include "ui/image_view.h"

#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::ui {
namespace {

class ImageViewTest : public ::testing::Test {
 protected:
  ImageViewTest() {
    view.resize(600, 400);
    view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.ShowPhotograph(MakeDisplay(test::PhotoLikePicture(1200, 800, 3, 8, 5)));
  }

  void Turn(const QPointF& at, int delta) {
    QWheelEvent event(at, view.mapToGlobal(at), {}, QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &event);
  }
  void Drag(const QPoint& from, const QPoint& to) {
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&view, &move);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
  }

  ImageView view;
};

TEST_F(ImageViewTest, ThePickersCrossComesBackAfterARun) {
  view.SetPicking(true);
  view.SetLocked(true);
  EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor) << "the window's";
  view.SetLocked(false);
  EXPECT_EQ(view.cursor().shape(), Qt::CrossCursor);
}

// On a screen that gives a logical pixel two of its own from some moment on.
class ScaledView : public ImageView {
 public:
  int scale = 1;

 protected:
  int metric(PaintDeviceMetric metric) const override {
    if (metric == PdmDevicePixelRatio) return scale;
    if (metric == PdmDevicePixelRatioScaled) return scale * static_cast<int>(devicePixelRatioFScale());
    return ImageView::metric(metric);
  }
};

TEST(ScaledViewTest, FollowsTheWindowToAnotherScreen) {
  ScaledView view;
  view.resize(600, 400);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  view.ShowPhotograph(MakeDisplay(test::PhotoLikePicture(1200, 800, 3, 8, 5)));
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 0.5);
  view.scale = 2;
  view.repaint();
  EXPECT_EQ(view.geometry().viewWidth(), 1200);
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 1.0) << "still fitted";
}

TEST_F(ImageViewTest, ZoomsByWheelKeysListAndDoubleClick) {
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 0.5);
  QSignalSpy zooms(&view, &ImageView::zoomChanged);
  Turn({300, 200}, 120);
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 0.6);
  Turn({300, 200}, -60);
  Turn({300, 200}, -60);
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 0.5) << "half notches count together";
  view.SetZoom(1.0);
  view.ZoomIn();
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 1.2);
  EXPECT_DOUBLE_EQ(zooms.last().first().toDouble(), 1.2);
  QTest::mouseDClick(&view, Qt::LeftButton);
  EXPECT_DOUBLE_EQ(view.geometry().zoom(), 0.5);
}

TEST_F(ImageViewTest, DragsThePhotographOrTheRectangle) {
  view.SetZoom(1.0);
  Drag({100, 100}, {130, 80});
  EXPECT_DOUBLE_EQ(view.geometry().centreX(), 570.0);
  EXPECT_DOUBLE_EQ(view.geometry().centreY(), 420.0);
  view.Fit();
  view.PlaceRectangle();
  QSignalSpy changed(&view, &ImageView::rectangleChanged);
  Drag({300, 200}, {310, 190});
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(view.rectangle().rect()->left, 280 + 20) << "two pixels of the photograph for one of the view";
  EXPECT_EQ(view.rectangle().rect()->top, 160 - 20);
  EXPECT_DOUBLE_EQ(view.geometry().centreX(), 600.0);
}

TEST_F(ImageViewTest, PlacesARectangleWithThePicker) {
  QSignalSpy changed(&view, &ImageView::rectangleChanged);
  view.SetPicking(true);
  Drag({10, 20}, {110, 70});
  ASSERT_EQ(changed.count(), 1);
  EXPECT_FALSE(view.picking()) << "once";
  const PictureRect rect = view.rectangle().rect().value();
  EXPECT_NEAR(rect.left, 20, 2);
  EXPECT_NEAR(rect.right, 220, 2);
  EXPECT_NEAR(rect.bottom, 140, 2);
  view.SetPicking(true);
  QTest::mouseClick(&view, Qt::LeftButton, {}, {300, 200});
  EXPECT_EQ(view.rectangle().rect()->right - view.rectangle().rect()->left, PreviewRectangle::kWidth);
}

TEST_F(ImageViewTest, ResizesTheRectangleByEdgeAndByKeyboard) {
  view.PlaceRectangle();  // 280 ... 920 by 160 ... 640 at half size
  QSignalSpy changed(&view, &ImageView::rectangleChanged);
  Drag({140, 200}, {120, 210});
  EXPECT_EQ(view.rectangle().rect()->left, 240);
  EXPECT_EQ(view.rectangle().rect()->top, 160) << "an edge moves across only";
  Drag({460, 320}, {450, 330});
  EXPECT_EQ(view.rectangle().rect()->right, 900);
  EXPECT_EQ(view.rectangle().rect()->bottom, 660);
  ASSERT_EQ(changed.count(), 2);
  QTest::keyClick(&view, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(view.rectangle().rect()->left, 190) << "a tenth of the shorter side";
  QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier);
  EXPECT_EQ(view.rectangle().rect()->bottom, 710);
  EXPECT_EQ(view.rectangle().rect()->top, 160);
  EXPECT_EQ(changed.count(), 4);
  view.SetRectangleShown(false);
  const double centre = view.geometry().centreX();
  Drag({300, 200}, {310, 200});
  EXPECT_NE(view.geometry().centreX(), centre) << "a rectangle that is not seen is not in the way";
  QTest::keyClick(&view, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(changed.count(), 4);
}

TEST_F(ImageViewTest, AClickOnTheRectangleChangesNothing) {
  view.PlaceRectangle();
  QSignalSpy changed(&view, &ImageView::rectangleChanged);
  QTest::mouseClick(&view, Qt::LeftButton, {}, {300, 200});
  QTest::mouseDClick(&view, Qt::LeftButton, {}, {140, 200});
  EXPECT_EQ(changed.count(), 0);
}

TEST_F(ImageViewTest, PicksSplitsAndStopsByKeyboard) {
  QSignalSpy stops(&view, &ImageView::stopRequested);
  QSignalSpy changed(&view, &ImageView::rectangleChanged);
  view.SetPicking(true);
  QTest::keyClick(&view, Qt::Key_Escape);
  EXPECT_FALSE(view.picking());
  EXPECT_EQ(stops.count(), 0);
  QTest::keyClick(&view, Qt::Key_Escape);
  EXPECT_EQ(stops.count(), 1);
  QTest::keyClick(&view, Qt::Key_Return);
  EXPECT_EQ(changed.count(), 0);
  view.SetPicking(true);
  QTest::keyClick(&view, Qt::Key_Return);
  EXPECT_FALSE(view.picking());
  ASSERT_EQ(changed.count(), 1);
  EXPECT_NEAR(view.rectangle().rect()->left, 280, 1) << "in the middle of what is seen";

  view.ShowPhotograph(MakeDisplay(test::ConstantPicture(600, 400, 3, 8, 200)));
  view.ShowResult(MakeDisplay(test::ConstantPicture(600, 400, 3, 8, 100)));
  const auto greyAt = [this](int x) { return view.grab().toImage().pixelColor(x, 300).red(); };
  QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
  view.SetMode(ViewMode::kSplit);
  EXPECT_EQ(greyAt(320), 100);
  QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(greyAt(320), 200);
  EXPECT_EQ(greyAt(335), 100);
  for (int i = 0; i < 30; ++i) QTest::keyClick(&view, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(greyAt(5), 100) << "as far as the view's edge";
}

TEST_F(ImageViewTest, NamesTheSidesOfAComparison) {
  view.SetLabels({QStringLiteral("before"), QStringLiteral("after"), QStringLiteral("between")});
  view.ShowPhotograph(MakeDisplay(test::ConstantPicture(1200, 800, 3, 8, 200)));
  const auto labelled = [this](const QRect& part) {
    const QImage image = view.grab(part).toImage();
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, image.height() / 2).red() < 100) return true;
    }
    return false;
  };
  const QRect left(12, 12, 20, 20);
  const QRect right(568, 12, 20, 20);
  const auto expect = [&](bool leftSide, bool rightSide, const char* what) {
    EXPECT_EQ(labelled(left), leftSide) << what;
    EXPECT_EQ(labelled(right), rightSide) << what;
  };
  expect(false, false, "the result alone needs no name");
  view.HoldOriginal(true);
  expect(true, false, "held");
  view.HoldOriginal(false);
  view.SetMode(ViewMode::kSplit);
  expect(true, true, "split");
  view.SetMode(ViewMode::kSideBySide);
  expect(true, true, "side by side");
  view.SetMode(ViewMode::kNoise);
  expect(false, true, "removed noise");
}

TEST_F(ImageViewTest, RefusesEverythingWhileLockedOrEmpty) {
  const auto nothingHappens = [this](int shown) {
    const double zoom = view.geometry().zoom();
    view.ZoomIn();
    view.SetZoom(3.0);
    Turn({300, 200}, 120);
    QTest::mouseDClick(&view, Qt::LeftButton);
    QTest::mousePress(&view, Qt::RightButton);
    EXPECT_EQ(view.shown(), shown);
    QTest::mouseRelease(&view, Qt::RightButton);
    EXPECT_DOUBLE_EQ(view.geometry().zoom(), zoom);
  };
  view.SetZoom(0.7);
  view.SetLocked(true);
  nothingHappens(kDrawResult);
  view.SetLocked(false);
  view.ShowPhotograph(nullptr);
  nothingHappens(kDrawNothing);
  for (const ViewMode mode : {ViewMode::kSingle, ViewMode::kSplit, ViewMode::kSideBySide}) {
    view.SetMode(mode);
    QImage image(view.size(), QImage::Format_RGB32);
    image.fill(Qt::red);  // what was there before
    view.render(&image);
    for (const int x : {5, 300, 590}) EXPECT_EQ(image.pixelColor(x, 5), QColor(35, 35, 35)) << x;
  }
}

TEST_F(ImageViewTest, ComparesInEveryMode) {
  view.ShowPhotograph(MakeDisplay(test::ConstantPicture(600, 400, 3, 8, 200)));
  view.ShowResult(MakeDisplay(test::ConstantPicture(600, 400, 3, 8, 100)));
  view.SetZoom(1.0);
  const auto greyAt = [this](int x) { return view.grab().toImage().pixelColor(x, 100).red(); };
  EXPECT_EQ(greyAt(20), 100);
  QTest::mousePress(&view, Qt::RightButton);
  EXPECT_EQ(greyAt(20), 200);
  QTest::mouseRelease(&view, Qt::RightButton);
  view.SetMode(ViewMode::kSplit);
  EXPECT_EQ(greyAt(20), 200);
  EXPECT_EQ(greyAt(500), 100);
  Drag({300, 100}, {550, 100});
  EXPECT_EQ(greyAt(500), 200) << "the line was dragged";
  view.SetMode(ViewMode::kSideBySide);
  EXPECT_EQ(greyAt(100), 200);
  EXPECT_EQ(greyAt(500), 100);
  view.SetMode(ViewMode::kNoise);
  EXPECT_EQ(greyAt(300), 255) << "128 + 4 * 100, held";
}

// The stored picture that is this one when it is upright.
picture::PicBuf StoredFor(Orientation orientation, const picture::PicBuf& upright) {
  const bool swap = SwapsSides(orientation);
  const int width = swap ? upright->height : upright->width;
  const int height = swap ? upright->width : upright->height;
  picture::PicBuf stored(width, height, 3, 8);
  for (int y = 0; y < upright->height; ++y) {
    for (int x = 0; x < upright->width; ++x) {
      const PictureRect at = StoredRect(orientation, width, height, {x, y, x + 1, y + 1});
      for (int c = 0; c < 3; ++c) {
        test::SetSample(stored, at.left, at.top, c, test::Sample(upright, x, y, c));
      }
    }
  }
  return stored;
}

TEST_F(ImageViewTest, TurnedPhotographsBehaveAsUprightOnes) {
  const picture::PicBuf upright = test::PhotoLikePicture(900, 640, 3, 8, 6);
  std::vector<QImage> expected;
  PictureRect expectedRect{};
  for (int exif = 1; exif <= 8; ++exif) {
    SCOPED_TRACE(exif);
    const Orientation orientation = OrientationOf(exif);
    const picture::PicBuf stored = StoredFor(orientation, upright);
    std::vector<QImage> seen;
    const auto look = [&] { seen.push_back(view.grab().toImage()); };
    view.ShowPhotograph(MakeDisplay(stored, {nullptr, orientation}));
    view.ShowResult(
        MakeDisplay(test::ConstantPicture(stored->width, stored->height, 3, 8, 99), {nullptr, orientation}));
    EXPECT_EQ(view.geometry().pictureWidth(), 900);
    EXPECT_DOUBLE_EQ(view.geometry().zoom(), 400.0 / 640.0) << "fitted";
    look();
    QTest::mousePress(&view, Qt::RightButton);
    look();
    QTest::mouseRelease(&view, Qt::RightButton);
    view.SetMode(ViewMode::kSideBySide);
    look();
    view.SetMode(ViewMode::kNoise);
    look();
    view.SetMode(ViewMode::kSplit);
    Turn({100, 150}, 120);
    look();
    view.SetPicking(true);
    Drag({50, 60}, {150, 190});
    look();
    Drag({100, 100}, {130, 90});  // the rectangle
    Drag({400, 300}, {340, 250});
    view.Move(Direction::kLeft);
    view.Move(Direction::kDown);
    look();
    const PictureRect rect = view.rectangle().rect().value();
    if (exif == 1) {
      expected = seen;
      expectedRect = rect;
    }
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(std::tie(rect.left, rect.top, rect.right, rect.bottom),
              std::tie(expectedRect.left, expectedRect.top, expectedRect.right, expectedRect.bottom));
    view.SetMode(ViewMode::kSingle);
    view.Fit();
  }
  for (std::size_t i = 1; i < expected.size(); ++i) EXPECT_NE(expected[i], expected[i - 1]) << i;
}

}  // namespace
}  // namespace mirellon::ui
