// Lists that the wheel leaves alone.
#pragma once

#include <QComboBox>

namespace mirellon::ui {

// A wheel turned over the list scrolls what the list stands in, and never chooses another entry.
void KeepFromWheel(QComboBox& list);

}  // namespace mirellon::ui
