// The "About" box.
#pragma once

#include <QDialog>

#include "ui/texts.h"

namespace mirellon::ui {

class AboutDialog : public QDialog {
  Q_OBJECT

 public:
  AboutDialog(const Texts& texts, QWidget* parent);
};

}  // namespace mirellon::ui
