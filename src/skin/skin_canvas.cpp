#include "skin/skin_canvas.h"

#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>

namespace mirellon::skin {

namespace {

// To device pixels and back; a painter that turns things has no pixels to be on.
class PixelGrid {
 public:
  explicit PixelGrid(const QPainter& painter)
      : toPixels_(painter.deviceTransform().type() <= QTransform::TxScale ? painter.deviceTransform()
                                                                          : QTransform()),
        toUnits_(toPixels_.inverted()) {}

  [[nodiscard]] QRectF Pixels(const QRectF& units) const { return toPixels_.mapRect(units); }
  [[nodiscard]] QRectF Units(const QRect& pixels) const { return toUnits_.mapRect(QRectF(pixels)); }

 private:
  QTransform toPixels_;
  QTransform toUnits_;
};

QRect Rounded(const QRectF& rect) {
  const QPoint first(static_cast<int>(std::lround(rect.left())), static_cast<int>(std::lround(rect.top())));
  const QPoint last(static_cast<int>(std::lround(rect.right())),
                    static_cast<int>(std::lround(rect.bottom())));
  return {first, QSize(last.x() - first.x(), last.y() - first.y())};
}

// The four edges of three pieces.
using Cuts = std::array<int, 4>;

Cuts CutsOf(int start, int length, int near, int far) {
  if (near + far > length) {
    near = length * near / (near + far);
    far = length - near;
  }
  return {start, start + near, start + length - far, start + length};
}

QRect Piece(const Cuts& across, const Cuts& down, std::size_t column, std::size_t row) {
  return {across.at(column), down.at(row), across.at(column + 1) - across.at(column),
          down.at(row + 1) - down.at(row)};
}

class PlainScaling {
 public:
  // Smooth scaling would mix a piece with what lies beside it.
  explicit PlainScaling(QPainter& painter)
      : painter_(painter), smooth_(painter.testRenderHint(QPainter::SmoothPixmapTransform)) {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, false);
  }
  ~PlainScaling() { painter_.setRenderHint(QPainter::SmoothPixmapTransform, smooth_); }
  PlainScaling(const PlainScaling&) = delete;
  PlainScaling& operator=(const PlainScaling&) = delete;

 private:
  QPainter& painter_;
  bool smooth_;
};

}  // namespace

void DrawNinePatch(QPainter& painter, const QRectF& target, const SkinImage& image) {
  const PixelGrid grid(painter);
  const QRect pixels = Rounded(grid.Pixels(target));
  if (pixels.isEmpty()) return;
  const QMargins& slices = image.slices;
  const QSize size = image.pixmap.size();
  const Cuts fromAcross = CutsOf(0, size.width(), slices.left(), slices.right());
  const Cuts fromDown = CutsOf(0, size.height(), slices.top(), slices.bottom());
  const Cuts toAcross = CutsOf(pixels.left(), pixels.width(), slices.left(), slices.right());
  const Cuts toDown = CutsOf(pixels.top(), pixels.height(), slices.top(), slices.bottom());
  const PlainScaling scaling(painter);
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const QRect from = Piece(fromAcross, fromDown, column, row);
      const QRect to = Piece(toAcross, toDown, column, row);
      if (!from.isEmpty() && !to.isEmpty()) painter.drawPixmap(grid.Units(to), image.pixmap, QRectF(from));
    }
  }
}

void DrawCentred(QPainter& painter, const QRectF& target, const SkinImage& image) {
  const PixelGrid grid(painter);
  const QPointF middle = grid.Pixels(target).center();
  const QSize size = image.pixmap.size();
  const QPoint first(static_cast<int>(std::floor(middle.x() - size.width() / 2.0 + 0.5)),
                     static_cast<int>(std::floor(middle.y() - size.height() / 2.0 + 0.5)));
  const PlainScaling scaling(painter);
  painter.drawPixmap(grid.Units(QRect(first, size)), image.pixmap, QRectF(QPointF(), QSizeF(size)));
}

SkinCanvas::SkinCanvas(SkinImages& images, QPainter& painter)
    : images_(images), painter_(painter), scale_(1) {
  const QTransform transform = painter.deviceTransform();
  if (transform.type() <= QTransform::TxScale) scale_ = std::abs(transform.m11());
}

bool SkinCanvas::Stretch(Part part, PartState state, const QRectF& target) const {
  const SkinImage image = Image(part, state);
  if (image.missing()) return false;
  DrawNinePatch(painter_, target, image);
  return true;
}

bool SkinCanvas::Centre(Part part, PartState state, const QRectF& target) const {
  const SkinImage image = Image(part, state);
  if (image.missing()) return false;
  DrawCentred(painter_, target, image);
  return true;
}

}  // namespace mirellon::skin
