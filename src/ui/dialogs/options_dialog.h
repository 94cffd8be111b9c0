// The "Options" dialog.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QRadioButton>

#include "settings/options_state.h"
#include "ui/texts.h"

namespace mirellon::ui {

// Shows the state and tells it of clicks; what OK does is the caller's, after exec(). `cardText` tells, in a
// tooltip, which card it is and why it cannot be used.
class OptionsDialog : public QDialog {
  Q_OBJECT

 public:
  OptionsDialog(settings::OptionsState& state, const settings::Localization& localization, const Texts& texts,
                const QString& cardText, QWidget* parent);

 private:
  void FillLanguages(const settings::Localization& localization, const Texts& texts);
  void Arrange(const Texts& texts);
  void Connect();
  void ShowState();

  settings::OptionsState& state_;
  QLabel* languageLabel_;
  QComboBox* language_;
  QCheckBox* hardware_;
  QRadioButton* fusion_;
  QRadioButton* pureGpu_;
  QCheckBox* dark_;
};

}  // namespace mirellon::ui
