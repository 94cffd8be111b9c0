// The toolkit's own texts in the program's language.
#pragma once

#include <QTranslator>
#include <functional>
#include <map>
#include <string>

#include "ui/texts.h"

namespace mirellon::ui {

// Of what the toolkit writes by itself, that which the table has: buttons and the labels of file dialogs.
// Nothing in English, where the toolkit's own have mnemonics.
class TableTranslator : public QTranslator {
 public:
  TableTranslator(const Texts& texts, QObject* parent);

  [[nodiscard]] QString translate(const char* context, const char* source, const char* disambiguation,
                                  int n) const override;
  [[nodiscard]] bool isEmpty() const override { return texts_.empty(); }

 private:
  std::map<std::string, QString, std::less<>> texts_;  // by the toolkit's own, without "&"
};

// Puts the toolkit's translation for that acronym in place where it is installed (file dialogs, context
// menus, names of keys), and the table behind it. Once, before there is any window.
void InstallToolkitTexts(const std::wstring& acronym, const Texts& texts);

}  // namespace mirellon::ui
