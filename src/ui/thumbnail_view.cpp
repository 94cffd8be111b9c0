#include "ui/thumbnail_view.h"

#include <QPainter>
#include <algorithm>

namespace mirellon::ui {

namespace {

constexpr QSize kUsual(192, 144);
constexpr qreal kRadius = 4;
constexpr int kFrame = 4;
constexpr int kShade = 115;  // percent

}  // namespace

ThumbnailView::ThumbnailView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setMinimumSize(kUsual);
}

QSize ThumbnailView::sizeHint() const {
  return kUsual;
}

void ThumbnailView::Show(const QImage& image) {
  image_ = image;
  update();
}

void ThumbnailView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::Mid), 1));
  painter.setBrush(palette().color(QPalette::Window).darker(kShade));  // never brighter than the picture
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
  if (image_.isNull()) return;
  const qreal ratio = devicePixelRatioF();
  const QSizeF room = QSizeF(size()).shrunkBy(QMarginsF(kFrame, kFrame, kFrame, kFrame)) * ratio;
  QSizeF shown = QSizeF(image_.size());
  if (shown.width() > room.width() || shown.height() > room.height()) {
    shown.scale(room, Qt::KeepAspectRatio);
  }
  const QSize pixels = shown.toSize().expandedTo(QSize(1, 1));
  QImage scaled = image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  scaled.setDevicePixelRatio(ratio);
  const QSizeF size = QSizeF(pixels) / ratio;
  painter.drawImage(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), scaled);
}

}  // namespace mirellon::ui
