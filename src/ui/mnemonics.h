// Letters by which the keyboard reaches menus.
#pragma once

#include <QSet>
#include <QStringList>
#include <QWidget>

namespace mirellon::ui {

// The dynamic property of an action that holds its English text.
inline constexpr const char* kEnglishProperty = "english";

// Gives each text of one menu or dialog a letter of its own to press with Alt: "&" before a letter (A to Z)
// that no other one has, the first of a word rather than one within. A text without such letters, as in
// Japanese, gets one of its English counterpart behind it, "ファイル(&F)", if that is told. A text that has
// an
// "&" keeps it; one whose letters are all taken stays without.
class Mnemonics {
 public:
  QString operator()(QString text, const QString& english = {});

 private:
  QSet<QChar> taken_;  // upper case
};

[[nodiscard]] QStringList WithMnemonics(const QStringList& texts, const QStringList& english);

// Gives them to the actions of a menu or menu bar.
void GiveMnemonics(QWidget& menu);

}  // namespace mirellon::ui
