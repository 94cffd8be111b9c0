// Shows on a widget that draws no focus of its own that the Tab key has led there.
#pragma once

#include <QWidget>

namespace mirellon::ui {

// Lies over the whole widget, lets the pointer through, and is to be seen only from when a key has brought
// the focus until it goes: whoever clicks on a photograph needs no frame around it.
class FocusFrame : public QWidget {
  Q_OBJECT

 public:
  explicit FocusFrame(QWidget* framed);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace mirellon::ui
