// What every list of the program has in common.
#pragma once

#include <QComboBox>
#include <QString>

namespace mirellon::ui {

// A wheel turned over the list scrolls what the list stands in, and never chooses another entry. A screen
// reader calls it by `name`, and tells the entry apart from that.
void DressList(QComboBox& list, const QString& name);

}  // namespace mirellon::ui
