// A label for texts of any length.
#pragma once

#include <QLabel>

namespace mirellon::ui {

// Cuts its text with an ellipsis rather than widening the window. One line, plain text.
class ElidedLabel : public QLabel {
 public:
  ElidedLabel(Qt::TextElideMode mode, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Qt::TextElideMode mode_;
};

}  // namespace mirellon::ui
