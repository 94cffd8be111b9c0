// What the keyboard does in the view.
#include <QKeyEvent>
#include <algorithm>
#include <cmath>

#include "ui/image_view.h"

namespace mirellon::ui {

namespace {

constexpr double kKeyStep = 0.1;     // of the rectangle's shorter side
constexpr double kSplitStep = 0.05;  // of the view's width

QPoint DirectionOf(int key) {
  switch (key) {
    case Qt::Key_Left:
      return {-1, 0};
    case Qt::Key_Right:
      return {1, 0};
    case Qt::Key_Up:
      return {0, -1};
    case Qt::Key_Down:
      return {0, 1};
    default:
      return {};
  }
}

}  // namespace

// What the pointer does: Shift and an arrow moves the preview rectangle, with Ctrl its lower right corner;
// Alt and an arrow moves the line of the split view; Return places a picked rectangle, Escape leaves the
// picker.
void ImageView::keyPressEvent(QKeyEvent* event) {
  const auto modifiers = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
  const QPoint direction = DirectionOf(event->key());
  bool done = false;
  if (modifiers == Qt::NoModifier) {
    done = PickByKey(event->key());
  } else if (modifiers == Qt::AltModifier) {
    done = MoveSplitByKey(direction);
  } else if (modifiers == Qt::ShiftModifier || modifiers == (Qt::ShiftModifier | Qt::ControlModifier)) {
    done = ChangeRectangleByKey(direction, modifiers.testFlag(Qt::ControlModifier));
  }
  if (!done) QWidget::keyPressEvent(event);
}

bool ImageView::PickByKey(int key) {
  if (key == Qt::Key_Escape) {
    if (!picking_) emit stopRequested();
    SetPicking(false);
    return true;
  }
  if (!picking_ || locked_ || (key != Qt::Key_Return && key != Qt::Key_Enter)) return false;
  const QPoint middle = PicturePoint({geometry_.viewWidth() / 2, geometry_.viewHeight() / 2});
  rectangle_.PlaceAt(middle.x(), middle.y());
  SetPicking(false);
  Redraw();
  emit rectangleChanged();
  return true;
}

bool ImageView::MoveSplitByKey(const QPoint& direction) {
  if (mode_ != ViewMode::kSplit || direction.x() == 0) return false;
  split_ = std::clamp(split_ + kSplitStep * direction.x(), 0.0, 1.0);
  Redraw();
  return true;
}

bool ImageView::ChangeRectangleByKey(const QPoint& direction, bool resize) {
  if (direction.isNull() || !RectangleUsable()) return false;
  const PictureRect rect = rectangle_.rect().value();
  const int shorter = std::min(rect.right - rect.left, rect.bottom - rect.top);
  const QPoint by = direction * std::max(1, static_cast<int>(std::lround(kKeyStep * shorter)));
  if (resize) {
    rectangle_.ResizeBy(kRightEdge | kBottomEdge, by.x(), by.y());
  } else {
    rectangle_.MoveBy(by.x(), by.y());
  }
  if (SameRect(rect, rectangle_.rect())) return true;  // at the photograph's edge
  emit rectangleMoving();
  Redraw();
  emit rectangleChanged();
  return true;
}

}  // namespace mirellon::ui
