#include "ui/mnemonics.h"

#include <QAction>

namespace mirellon::ui {

namespace {

bool Usable(QChar c) {
  return c.unicode() < 128 && c.isLetter();
}

// Where the letter may stand, the better places first.
QList<qsizetype> Places(const QString& text) {
  QList<qsizetype> starts;
  QList<qsizetype> within;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (!Usable(text[i])) continue;
    const bool begins = i == 0 || !text[i - 1].isLetterOrNumber();
    (begins ? starts : within).append(i);
  }
  return starts + within;
}

// -1: none.
qsizetype FreePlace(const QString& text, const QSet<QChar>& taken) {
  for (const qsizetype place : Places(text)) {
    if (!taken.contains(text[place].toUpper())) return place;
  }
  return -1;
}

}  // namespace

QString Mnemonics::operator()(QString text, const QString& english) {
  const qsizetype before = text.indexOf(QLatin1Char('&'));
  if (before >= 0) {
    if (before + 1 < text.size()) taken_.insert(text[before + 1].toUpper());
    return text;
  }
  const bool foreign = Places(text).isEmpty();
  const QString& letters = foreign ? english : text;
  const qsizetype place = FreePlace(letters, taken_);
  if (place < 0) return text;
  const QChar letter = letters[place].toUpper();
  taken_.insert(letter);
  if (!foreign) return text.insert(place, QLatin1Char('&'));
  const qsizetype dots = text.indexOf(QLatin1String("..."));
  return text.insert(dots < 0 ? text.size() : dots, QStringLiteral("(&%1)").arg(letter));
}

QStringList WithMnemonics(const QStringList& texts, const QStringList& english) {
  Mnemonics mnemonics;
  QStringList marked;
  for (qsizetype i = 0; i < texts.size(); ++i) marked.append(mnemonics(texts[i], english.value(i)));
  return marked;
}

void GiveMnemonics(QWidget& menu) {
  QList<QAction*> actions;
  QStringList texts;
  QStringList english;
  for (QAction* action : menu.actions()) {
    if (action->isSeparator()) continue;
    actions.append(action);
    texts.append(action->text());
    english.append(action->property(kEnglishProperty).toString());
  }
  const QStringList marked = WithMnemonics(texts, english);
  for (qsizetype i = 0; i < actions.size(); ++i) actions[i]->setText(marked[i]);
}

}  // namespace mirellon::ui
