// Drawings in a scheme's colours.
#pragma once

#include <QByteArray>
#include <optional>

#include "skin/schemes.h"

namespace mirellon::skin {

// The SVG text with "{accent}" and the other colour names replaced by the scheme's colours; nothing when a
// name is unknown or a brace stays open.
[[nodiscard]] std::optional<QByteArray> InColours(const QByteArray& svg, const Scheme& scheme);

// At a fractional scale the edges of rectangles would fall between two pixels. This moves them onto whole
// pixels, a rectangle's opposite edges alike, and leaves everything else. Text that is not well-formed stays
// as it is.
[[nodiscard]] QByteArray OnWholePixels(const QByteArray& svg, qreal scale);

}  // namespace mirellon::skin
