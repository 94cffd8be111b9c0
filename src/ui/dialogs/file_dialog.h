// What the toolkit's file dialog needs to be one of the program's.
#pragma once

#include <QFileDialog>

namespace mirellon::ui {

// Room for names, sizes and dates, and lists that behave as all of the program's do. Without effect on the
// system's own dialogs.
void DressFileDialog(QFileDialog& dialog);

}  // namespace mirellon::ui
