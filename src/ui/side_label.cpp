#include "ui/side_label.h"

#include <QFontMetricsF>

namespace mirellon::ui {

namespace {

constexpr double kMargin = 12.0;
constexpr double kInsideX = 8.0;
constexpr double kInsideY = 4.0;

}  // namespace

void DrawSideLabel(QPainter& painter, const QRectF& pane, Side side, const QString& text) {
  const QSizeF needed = QFontMetricsF(painter.font()).size(Qt::TextSingleLine, text);
  QRectF label(0, pane.top() + kMargin, needed.width() + 2 * kInsideX, needed.height() + 2 * kInsideY);
  if (label.width() + 2 * kMargin > pane.width() || label.bottom() + kMargin > pane.bottom()) return;
  if (side == Side::kLeft) {
    label.moveLeft(pane.left() + kMargin);
  } else {
    label.moveRight(pane.right() - kMargin);
  }
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0, 0, 0, 176));
  painter.drawRoundedRect(label, 4, 4);
  painter.setPen(Qt::white);
  painter.drawText(label, Qt::AlignCenter, text);
  painter.restore();
}

}  // namespace mirellon::ui
