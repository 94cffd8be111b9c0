// Letters by which the keyboard reaches menus.
#pragma once

#include <QStringList>
#include <QWidget>

namespace mirellon::ui {

// The dynamic property of an action that holds its English text.
inline constexpr const char* kEnglishProperty = "english";

// The texts with "&" before a letter (A to Z) that no other one has: the first of a word rather than
// one within. A text without such letters, as in Japanese, gets one of its English counterpart behind it,
// "ファイル(&F)". A text that has an "&" keeps it; one whose letters are all taken stays without.
[[nodiscard]] QStringList WithMnemonics(const QStringList& texts, const QStringList& english);

// Gives them to the actions of a menu or menu bar.
void GiveMnemonics(QWidget& menu);

}  // namespace mirellon::ui
