// The JPEG quality as a slider with its value.
#pragma once

#include <QLabel>
#include <QSlider>
#include <QWidget>

#include "ui/texts.h"

namespace mirellon::ui {

// 10 to 100 percent. A step beyond an end leaves the slider there and still counts: one step down at 10 gives
// 9.
class QualitySlider : public QWidget {
  Q_OBJECT

 public:
  // A quality below 10 is shown, and taken, as 10.
  QualitySlider(int quality, const Texts& texts, QWidget* parent = nullptr);

  [[nodiscard]] int quality() const { return quality_; }

 private:
  void Follow(int action);

  int quality_;
  QSlider* slider_;
  QLabel* value_;
};

}  // namespace mirellon::ui
