#include "ui/elided_label.h"

#include <QPainter>

namespace mirellon::ui {

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget* parent) : QLabel(parent), mode_(mode) {
  setTextFormat(Qt::PlainText);
  setMinimumWidth(0);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  const QString shown = fontMetrics().elidedText(text(), mode_, width());
  painter.drawText(rect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

}  // namespace mirellon::ui
