// The "Batch denoising options" dialog.
#pragma once

#include <QDialog>

#include "ui/dialogs/quality_slider.h"
#include "ui/texts.h"

namespace mirellon::ui {

class BatchOptionsDialog : public QDialog {
  Q_OBJECT

 public:
  BatchOptionsDialog(int jpegQuality, const Texts& texts, QWidget* parent);

  [[nodiscard]] int jpegQuality() const { return quality_->quality(); }

 private:
  QualitySlider* quality_;
};

}  // namespace mirellon::ui
