#include "ui/toolkit_texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "settings/text_table.h"

namespace mirellon::ui {

namespace {

struct Row {
  std::string_view source;  // without "&"
  int text;
};
constexpr std::array kRows{
    Row{"OK", text::kOk},     Row{"Cancel", text::kCancel},
    Row{"Save", text::kSave}, Row{"Close", 7},
    Row{"Yes", text::kYes},   Row{"No", text::kNo},
    Row{"File name:", 292},   Row{"Files of type:", 293},
    Row{"Look in:", 294},     Row{"Undo", 202},
    Row{"Redo", 203},
};

// An acronym is part of a file's name, never a way to another folder.
bool Harmless(const std::wstring& acronym) {
  return !acronym.empty() && std::all_of(acronym.begin(), acronym.end(), [](wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_';
  });
}

}  // namespace

TableTranslator::TableTranslator(const Texts& texts, QObject* parent) : QTranslator(parent) {
  for (const Row& row : kRows) {
    const QString text = texts(row.text);
    const bool english = text == QString::fromWCharArray(settings::EnglishText(row.text));
    if (!english) texts_.emplace(row.source, text);
  }
}

QString TableTranslator::translate(const char* /*context*/, const char* source,
                                   const char* /*disambiguation*/, int /*n*/) const {
  std::string plain = source;
  std::erase(plain, '&');
  const auto found = texts_.find(plain);
  return found == texts_.end() ? QString() : found->second;
}

void InstallToolkitTexts(const std::wstring& acronym, const Texts& texts) {
  QCoreApplication* application = QCoreApplication::instance();
  QCoreApplication::installTranslator(new TableTranslator(texts, application));  // the application's
  if (!Harmless(acronym)) return;
  auto own = std::make_unique<QTranslator>();
  const QString name = QStringLiteral("qtbase_") + QString::fromStdWString(acronym);
  if (!own->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) return;
  own->setParent(application);
  QCoreApplication::installTranslator(own.release());
}

}  // namespace mirellon::ui
