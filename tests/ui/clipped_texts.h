// Finds texts that do not fit where they stand.
#pragma once

#include <QStringList>
#include <QWidget>

namespace mirellon::test {

// One line for every text in the window that is larger than its place: labels, buttons, check boxes, radio
// buttons, titles of groups, lists, fields, tabs, menus of a menu bar. What hides behind a scroll bar is no
// fault; labels that shorten their text by themselves (their size policy says so) are left out.
[[nodiscard]] QStringList ClippedTexts(QWidget& window);

}  // namespace mirellon::test
