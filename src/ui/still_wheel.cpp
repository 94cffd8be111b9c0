#include "ui/still_wheel.h"

#include <QEvent>

namespace mirellon::ui {

namespace {

class StillWheel : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel) return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
  }
};

}  // namespace

void KeepFromWheel(QComboBox& list) {
  list.installEventFilter(new StillWheel(&list));  // the list's
}

}  // namespace mirellon::ui
