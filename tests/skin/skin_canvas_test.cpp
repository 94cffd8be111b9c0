#include "skin/skin_canvas.h"

#include <QImage>

#include <gtest/gtest.h>

#include "skin/pixels.h"

namespace mirellon::skin {
namespace {

struct Drawn {
  QImage image;
  SkinImage part;
};

// The part on a red ground, in units.
Drawn Draw(Part part, const QRectF& target, qreal scale) {
  SkinImages images(SchemeOf(kSchemeLight));
  QImage image(QSize(160, 80) * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::red);
  QPainter painter(&image);
  EXPECT_TRUE(SkinCanvas(images, painter).Stretch(part, PartState::kOff, target));
  return {image, images.Find(part, PartState::kOff, scale)};
}

// Between its corners, a column or row of the border is one colour, and the next one is another.
TEST(SkinCanvasTest, AButtonsBorderIsSharp) {
  const Scheme& scheme = SchemeOf(kSchemeLight);
  for (const auto& [scale, thick] : {std::pair{1.0, 1}, {1.5, 1}, {2.0, 2}, {3.0, 3}}) {
    const Drawn drawn = Draw(Part::kButton, QRectF(8, 8, 120, 28), scale);
    const QRect rect(qRound(8 * scale), qRound(8 * scale), qRound(120 * scale), qRound(28 * scale));
    const int corner = drawn.part.slices.left();
    const auto column = [&](int x, const QColor& colour) {
      for (int y = rect.top() + corner; y <= rect.bottom() - corner; ++y) {
        ASSERT_EQ(drawn.image.pixelColor(x, y), colour) << x << ", " << y << " at " << scale;
      }
    };
    const auto row = [&](int y, const QColor& colour) {
      for (int x = rect.left() + corner; x <= rect.right() - corner; ++x) {
        ASSERT_EQ(drawn.image.pixelColor(x, y), colour) << x << ", " << y << " at " << scale;
      }
    };
    column(rect.left() - 1, Qt::red);
    column(rect.right() + 1, Qt::red);
    for (int i = 0; i < thick; ++i) {
      column(rect.left() + i, scheme.line);
      column(rect.right() - i, scheme.line);
      row(rect.top() + i, scheme.line);
      row(rect.bottom() - i, scheme.line);
    }
    column(rect.left() + thick, scheme.surface);
    column(rect.right() - thick, scheme.surface);
    row(rect.top() + thick, scheme.surface);
    row(rect.bottom() - thick, scheme.surface);
  }
}

TEST(SkinCanvasTest, CornersAreNotStretched) {
  const Drawn drawn = Draw(Part::kButton, QRectF(0, 0, 160, 80), 2);
  const QMargins& slices = drawn.part.slices;
  QImage whole(drawn.part.pixmap.size(), QImage::Format_RGB32);
  whole.fill(Qt::red);
  QPainter(&whole).drawPixmap(0, 0, drawn.part.pixmap);
  const QRect corner(0, 0, slices.left(), slices.top());
  EXPECT_EQ(drawn.image.copy(corner).convertToFormat(QImage::Format_RGB32), whole.copy(corner));
  const QPoint far(drawn.image.width() - slices.right(), drawn.image.height() - slices.bottom());
  const QPoint from(whole.width() - slices.right(), whole.height() - slices.bottom());
  EXPECT_EQ(drawn.image.copy(QRect(far, corner.size())).convertToFormat(QImage::Format_RGB32),
            whole.copy(QRect(from, corner.size())));
}

TEST(SkinCanvasTest, StaysInsideATargetSmallerThanTheCorners) {
  for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(5, 40), QSize(40, 5), QSize(15, 15)}) {
    const QRect rect(QPoint(10, 10), size);
    const QImage image = Draw(Part::kButton, rect, 1).image;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (rect.contains(x, y)) continue;
        ASSERT_EQ(image.pixelColor(x, y), QColor(Qt::red)) << x << ", " << y;
      }
    }
    EXPECT_NE(image.pixelColor(rect.center()), QColor(Qt::red)) << size.width() << "x" << size.height();
  }
  EXPECT_EQ(test::DifferentPixels(Draw(Part::kButton, QRectF(10, 10, 0, 20), 1).image,
                                  Draw(Part::kButton, QRectF(10, 10, 20, -1), 1).image),
            0);  // neither draws
}

}  // namespace
}  // namespace mirellon::skin
