// Sizes that follow the system's font.
#pragma once

#include <QFont>
#include <QSize>
#include <QWidget>

namespace mirellon::ui {

// The font where its figures are equally wide, else the system's fixed one of that size.
[[nodiscard]] QFont TabularFont(const QFont& font);

// Of icons beside the widget's text, at least `least` pixels.
[[nodiscard]] QSize IconSize(const QWidget& widget, int least);

}  // namespace mirellon::ui
