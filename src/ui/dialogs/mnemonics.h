// Keys for a dialog's controls.
#pragma once

#include <QSet>
#include <QString>

namespace mirellon::ui {

// Gives each text of one dialog a letter of its own to press with Alt. Texts are of any language; one that
// has no free Latin letter, or a mark already, stays as it is.
class Mnemonics {
 public:
  QString operator()(QString text);

 private:
  QSet<QChar> taken_;  // lower case
};

}  // namespace mirellon::ui
