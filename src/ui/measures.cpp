#include "ui/measures.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <algorithm>

namespace mirellon::ui {

QFont TabularFont(const QFont& font) {
  const QFontMetricsF metrics(font);
  const QString digits = QStringLiteral("0123456789");
  const bool equal = std::all_of(digits.begin(), digits.end(), [&](QChar digit) {
    return metrics.horizontalAdvance(digit) == metrics.horizontalAdvance(digits.front());
  });
  if (equal) return font;
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  fixed.setPointSizeF(font.pointSizeF() > 0 ? font.pointSizeF() : fixed.pointSizeF());
  return fixed;
}

QSize IconSize(const QWidget& widget, int least) {
  const int side = std::max(least, widget.fontMetrics().height() * 5 / 4);
  return {side, side};
}

}  // namespace mirellon::ui
