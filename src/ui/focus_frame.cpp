#include "ui/focus_frame.h"

#include <QFocusEvent>
#include <QPainter>
#include <QStyleOption>

namespace mirellon::ui {

FocusFrame::FocusFrame(QWidget* framed) : QWidget(framed) {
  setObjectName(QStringLiteral("focusFrame"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  framed->installEventFilter(this);
  hide();
}

bool FocusFrame::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) resize(parentWidget()->size());
  if (event->type() == QEvent::FocusIn) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
      resize(parentWidget()->size());
      raise();
      show();
    }
  }
  if (event->type() == QEvent::FocusOut || event->type() == QEvent::MouseButtonPress) hide();
  return QWidget::eventFilter(watched, event);
}

void FocusFrame::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QStyleOptionFocusRect frame;
  frame.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, &painter, this);
}

}  // namespace mirellon::ui
