// What the empty view offers.
#pragma once

#include <QWidget>

#include "ui/texts.h"

namespace mirellon::ui {

// A button to open a photograph, and the hint that one can be dropped; lies in the view's middle.
class StartHint : public QWidget {
  Q_OBJECT

 public:
  StartHint(const Texts& texts, QWidget* view);

 signals:
  void openRequested();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Centre();
};

}  // namespace mirellon::ui
