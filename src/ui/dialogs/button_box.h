// The buttons that end a dialog.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>

#include "ui/texts.h"

namespace mirellon::ui {

// "OK" and "Cancel", which accept and reject the dialog. The dialog's.
[[nodiscard]] QDialogButtonBox* OkAndCancel(const Texts& texts, QDialog* dialog);

}  // namespace mirellon::ui
