// The "About" box.
#pragma once

#include <QDialog>

#include "ui/card_service.h"
#include "ui/texts.h"

namespace mirellon::ui {

// A line on the graphics card: its name, and whether it is in use (`on`) or why not; null: there is none to
// ask.
[[nodiscard]] QString CardText(const CardService* card, bool on, const Texts& texts);

class AboutDialog : public QDialog {
  Q_OBJECT

 public:
  AboutDialog(const Texts& texts, const QString& cardText, QWidget* parent);
};

}  // namespace mirellon::ui
