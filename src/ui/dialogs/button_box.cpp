#include "ui/dialogs/button_box.h"

#include <QPushButton>

namespace mirellon::ui {

QDialogButtonBox* OkAndCancel(const Texts& texts, QDialog* dialog) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  buttons->button(QDialogButtonBox::Ok)->setText(texts(text::kOk));
  buttons->button(QDialogButtonBox::Cancel)->setText(texts(text::kCancel));
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return buttons;
}

}  // namespace mirellon::ui
