// The toolkit's own texts in the program's language.
#pragma once

#include <QTranslator>
#include <string>

#include "ui/texts.h"

namespace mirellon::ui {

// Of what the toolkit writes by itself, that which the table has: buttons and the labels of file dialogs.
class TableTranslator : public QTranslator {
 public:
  TableTranslator(const Texts& texts, QObject* parent);

  [[nodiscard]] QString translate(const char* context, const char* source, const char* disambiguation,
                                  int n) const override;
  [[nodiscard]] bool isEmpty() const override { return false; }

 private:
  Texts texts_;
};

// Puts the toolkit's translation for that acronym in place where it is installed (file dialogs, context
// menus, names of keys), and the table behind it. Once, before there is any window.
void InstallToolkitTexts(const std::wstring& acronym, const Texts& texts);

}  // namespace mirellon::ui
