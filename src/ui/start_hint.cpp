#include "ui/start_hint.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "skin/skin_style.h"

namespace mirellon::ui {

StartHint::StartHint(const Texts& texts, QWidget* view) : QWidget(view) {
  setObjectName(QStringLiteral("startHint"));
  auto* button = new QPushButton(texts(text::kOpenButton), this);
  button->setObjectName(QStringLiteral("startOpen"));
  button->setProperty(skin::kPrimaryProperty, true);
  button->setMinimumHeight(40);
  button->setMinimumWidth(button->sizeHint().width() + 32);
  setFocusProxy(button);
  auto* hint = new QLabel(texts(text::kDropHint), this);
  hint->setAlignment(Qt::AlignHCenter);
  auto* column = new QVBoxLayout(this);
  column->setSpacing(8);
  column->addWidget(button, 0, Qt::AlignHCenter);
  column->addWidget(hint);
  connect(button, &QPushButton::clicked, this, &StartHint::openRequested);
  view->installEventFilter(this);
  Centre();
}

bool StartHint::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) Centre();
  return QWidget::eventFilter(watched, event);
}

void StartHint::Centre() {
  const QSize size = sizeHint();
  const QRect view = parentWidget()->rect();
  setGeometry(QRect(view.center() - QPoint(size.width() / 2, size.height() / 2), size));
}

}  // namespace mirellon::ui
