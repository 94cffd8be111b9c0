#include "ui/dialogs/mnemonics.h"

namespace mirellon::ui {

namespace {

bool IsKey(QChar character) {
  const char16_t code = character.toLower().unicode();
  return (code >= u'a' && code <= u'z') || (code >= u'0' && code <= u'9');
}

}  // namespace

QString Mnemonics::operator()(QString text) {
  if (text.contains(u'&')) return text;
  // The beginnings of words are found first by the eye.
  for (const bool beginnings : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (beginnings && i > 0 && text[i - 1].isLetterOrNumber()) continue;
      const QChar key = text[i].toLower();
      if (!IsKey(key) || taken_.contains(key)) continue;
      taken_.insert(key);
      return text.insert(i, u'&');
    }
  }
  return text;
}

}  // namespace mirellon::ui
