// The name of what a part of the view shows.
#pragma once

#include <QPainter>
#include <QString>

namespace mirellon::ui {

enum class Side { kLeft, kRight };

// Drawn into the upper corner of `pane`, legible on every photograph; left out where the pane has no room.
void DrawSideLabel(QPainter& painter, const QRectF& pane, Side side, const QString& text);

}  // namespace mirellon::ui
