// One number of the panel: caption, value and slider.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QWidget>

#include "profiles/slider_math.h"
#include "ui/texts.h"

namespace mirellon::ui {

// The value can be slid, typed, and brought back to its default by a double click on the caption. The wheel
// does nothing unless the slider has the focus.
class ParameterRow : public QWidget {
  Q_OBJECT

 public:
  // `caption` is its number in the text table; object names carry `name`.
  ParameterRow(const profiles::SliderRow& row, int caption, const char* name, const Texts& texts,
               QWidget* parent);

  // Shows the value itself, the slider as near to it as it can.
  void ShowValue(double value);
  // Takes what was typed and not yet confirmed.
  void Commit();
  [[nodiscard]] bool sliderHeld() const { return slider_->isSliderDown(); }
  [[nodiscard]] const profiles::SliderRow& row() const { return row_; }

 signals:
  void moved(double value);  // for every change while it lasts; steps of keys and wheel tell no end
  void settled();            // the change is complete: let go, typed or reset

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ShowLabel(double value);
  void FitValue();
  void FollowAction(int action);
  void Give(double value);

  const profiles::SliderRow& row_;
  double shown_ = 0.0;
  QLabel* caption_;
  QLineEdit* value_;
  QSlider* slider_;
};

}  // namespace mirellon::ui
