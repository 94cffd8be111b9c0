// The "Adding Configuration" dialog.
#pragma once

#include <QDialog>
#include <QLineEdit>

#include "ui/dialogs/dialogs.h"
#include "ui/texts.h"

namespace mirellon::ui {

// Camera and ISO speed for a new set, to be taken from the photograph or typed.
class AddingDialog : public QDialog {
  Q_OBJECT

 public:
  AddingDialog(const ProfileNameQuestion& question, const Texts& texts, QWidget* parent);

  [[nodiscard]] ProfileName name() const;

 private:
  void TakeFromPhotograph();

  imageio::ExifSummary exif_;
  QLineEdit* camera_;
  QLineEdit* iso_;
};

}  // namespace mirellon::ui
