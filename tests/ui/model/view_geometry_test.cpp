#include "ui/model/view_geometry.h"

#include <gtest/gtest.h>

namespace mirellon::ui {
namespace {

ViewGeometry Viewing(int viewWidth, int viewHeight, int width, int height) {
  ViewGeometry geometry;
  geometry.SetViewSize(viewWidth, viewHeight);
  geometry.SetPictureSize(width, height);
  geometry.Fit(ViewGeometry::FitLimit::kCapped);
  return geometry;
}

struct Point {
  double x;
  double y;
};

Point UnderPointer(const ViewGeometry& geometry, int x, int y) {
  Point point{};
  geometry.Map().MapPointDstToSrc(&point.x, &point.y, x, y);
  return point;
}

TEST(ViewGeometryTest, FitsAndCapsOnlyAfterLoading) {
  struct Case {
    int viewWidth, viewHeight, width, height;
    double capped, free;
  };
  for (const Case& c : {Case{900, 600, 3000, 2000, 0.3, 0.3}, Case{900, 600, 2000, 3000, 0.2, 0.2},
                        Case{900, 600, 900, 600, 1.0, 1.0}, Case{900, 600, 30, 20, 8.0, 30.0},
                        Case{900, 600, 1, 1, 8.0, 600.0}, Case{0, 0, 100, 100, 0.01, 0.01}}) {
    ViewGeometry geometry = Viewing(c.viewWidth, c.viewHeight, c.width, c.height);
    EXPECT_DOUBLE_EQ(geometry.zoom(), c.capped);
    geometry.Fit(ViewGeometry::FitLimit::kFree);
    EXPECT_DOUBLE_EQ(geometry.zoom(), c.free);
    EXPECT_DOUBLE_EQ(geometry.centreX(), c.width / 2.0);
    EXPECT_DOUBLE_EQ(geometry.centreY(), c.height / 2.0);
  }
}

TEST(ViewGeometryTest, StepsHaveNoLimits) {
  ViewGeometry geometry = Viewing(900, 600, 900, 600);
  for (int i = 0; i < 10; ++i) geometry.ZoomIn();
  EXPECT_NEAR(geometry.zoom(), 6.19173642, 1e-8);
  for (int i = 0; i < 10; ++i) geometry.ZoomIn();
  EXPECT_GT(geometry.zoom(), 30.0);
  for (int i = 0; i < 60; ++i) geometry.ZoomOut();
  EXPECT_LT(geometry.zoom(), 0.001);
}

TEST(ViewGeometryTest, WheelKeepsWhatIsUnderThePointer) {
  ViewGeometry geometry = Viewing(900, 600, 3000, 2000);
  for (const int delta : {120, 120, -120, 1, -1, 120}) {
    const double zoom = geometry.zoom();
    const Point before = UnderPointer(geometry, 700, 123);
    geometry.Wheel(700, 123, delta);
    const Point after = UnderPointer(geometry, 700, 123);
    EXPECT_NEAR(after.x, before.x, 1e-9);
    EXPECT_NEAR(after.y, before.y, 1e-9);
    EXPECT_DOUBLE_EQ(geometry.zoom(), zoom * (delta > 0 ? 1.2 : 0.8333333333333334));
  }
}

TEST(ViewGeometryTest, WheelHoldsItsLimits) {
  ViewGeometry geometry = Viewing(900, 600, 3000, 2000);
  for (int i = 0; i < 40; ++i) geometry.Wheel(10, 10, 120);
  EXPECT_DOUBLE_EQ(geometry.zoom(), 8.0);
  for (int i = 0; i < 80; ++i) geometry.Wheel(10, 10, -120);
  EXPECT_DOUBLE_EQ(geometry.zoom(), 100.0 / 3000.0);
  ViewGeometry tiny = Viewing(900, 600, 5, 2);
  tiny.Wheel(10, 10, 120);
  EXPECT_DOUBLE_EQ(tiny.zoom(), 20.0) << "the least zoom comes last";
  ViewGeometry outside = Viewing(900, 600, 3000, 2000);
  ViewGeometry edge = outside;
  outside.Wheel(-50, 5000, 120);
  edge.Wheel(0, 599, 120);
  EXPECT_DOUBLE_EQ(outside.centreX(), edge.centreX());
  EXPECT_DOUBLE_EQ(outside.centreY(), edge.centreY());
}

TEST(ViewGeometryTest, DragsAndMoves) {
  ViewGeometry geometry = Viewing(900, 600, 3000, 2000);
  geometry.SetZoom(0.5);
  geometry.Drag(100, 100, 130, 90);
  EXPECT_DOUBLE_EQ(geometry.centreX(), 1500.0 - 60.0);
  EXPECT_DOUBLE_EQ(geometry.centreY(), 1000.0 + 20.0);
  geometry.Move(Direction::kRight);
  geometry.Move(Direction::kUp);
  EXPECT_DOUBLE_EQ(geometry.centreX(), 1440.0 + 180.0) << "a tenth of 900 / 0.5";
  EXPECT_DOUBLE_EQ(geometry.centreY(), 1020.0 - 120.0);
}

TEST(ViewGeometryTest, FollowsTheViewsSize) {
  ViewGeometry geometry = Viewing(900, 600, 3000, 2000);
  geometry.SetViewSize(450, 600);
  EXPECT_DOUBLE_EQ(geometry.zoom(), 0.15) << "still fitted";
  geometry.SetZoom(2.0);
  const Point before = UnderPointer(geometry, 225, 300);
  geometry.SetViewSize(1000, 200);
  const Point after = UnderPointer(geometry, 500, 100);
  EXPECT_DOUBLE_EQ(geometry.zoom(), 2.0);
  EXPECT_DOUBLE_EQ(after.x, before.x);
  EXPECT_DOUBLE_EQ(after.y, before.y);
}

TEST(ViewGeometryTest, TellsWhatThePhotographCovers) {
  ViewGeometry geometry = Viewing(900, 600, 3000, 1000);
  const picture::CBxRect<int> fitted = geometry.Covered();
  EXPECT_EQ(fitted.left, 0);
  EXPECT_EQ(fitted.right, 900);
  EXPECT_EQ(fitted.top, 150);
  EXPECT_EQ(fitted.bottom, 450);
  geometry.Drag(0, 0, 5000, 0);
  EXPECT_GE(geometry.Covered().left, geometry.Covered().right) << "out of sight";
}

}  // namespace
}  // namespace mirellon::ui
