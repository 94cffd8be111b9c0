// Icons as strokes in the scheme's colour.
#pragma once

#include <QIcon>
#include <QString>

namespace mirellon::skin {

// The icon of an SVG resource. Where the drawing says "currentColor" it takes the palette's text colour of
// the moment (its disabled one for a disabled control), so it follows a change of scheme; sharp at every
// scale. A missing resource gives an icon that draws nothing.
[[nodiscard]] QIcon StrokeIcon(const QString& resource);

}  // namespace mirellon::skin
