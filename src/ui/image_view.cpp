#include "ui/image_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "ui/side_label.h"

namespace mirellon::ui {

namespace {

constexpr int kWheelStep = 120;  // what one notch of a wheel sends; finer devices send it in parts
constexpr int kSplitReach = 6;   // device pixels either side of the line
constexpr int kPaneGap = 4;      // device pixels between the panes
constexpr int kEdgeReach = 6;    // logical pixels either side of an edge of the rectangle

Qt::CursorShape CursorOf(unsigned edges) {
  const bool across = (edges & (kLeftEdge | kRightEdge)) != 0;
  const bool down = (edges & (kTopEdge | kBottomEdge)) != 0;
  if (!across) return Qt::SizeVerCursor;
  if (!down) return Qt::SizeHorCursor;
  const bool falling = ((edges & kLeftEdge) != 0) == ((edges & kTopEdge) != 0);
  return falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

QAccessibleInterface* MakeViewAccess(const QString& /*className*/, QObject* object) {
  auto* view = qobject_cast<ImageView*>(object);
  return view == nullptr ? nullptr : new QAccessibleWidget(view, QAccessible::Graphic);  // the toolkit's
}

}  // namespace

ImageView::ImageView(QWidget* parent) : QWidget(parent) {
  QAccessible::installFactory(MakeViewAccess);  // once, before anybody asks for the view
  setObjectName(QStringLiteral("imageView"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 120);
}

// ---- What is shown ----

void ImageView::ShowPhotograph(const SharedDisplay& original) {
  gesture_ = Gesture::kNone;
  HoldOriginal(false);
  SetPicking(false);
  renderer_.SetPatch(std::nullopt);
  renderer_.SetPicture(kDrawOriginal, original);
  if (original == nullptr) {
    geometry_.Reset();
  } else {
    geometry_.SetPictureSize(original->level(0).width, original->level(0).height);
    geometry_.Fit(ViewGeometry::FitLimit::kCapped);
  }
  rectangle_.SetPicture(geometry_.pictureWidth(), geometry_.pictureHeight());
  ShowResult(original);
  AfterZoom();
}

void ImageView::ShowResult(const SharedDisplay& result) {
  renderer_.SetPicture(kDrawResult, result);
  Redraw();
}

void ImageView::ShowAnew(const SharedDisplay& original, const SharedDisplay& result) {
  renderer_.SetPicture(kDrawOriginal, original);
  renderer_.SetPatch(std::nullopt);
  ShowResult(result);
}

void ImageView::ShowPatch(std::optional<ViewRenderer::Patch> patch) {
  renderer_.SetPatch(std::move(patch));
  Redraw();
}

void ImageView::SetBackground(std::uint8_t grey) {
  renderer_.SetBackground(grey);
  Redraw();
}

void ImageView::SetMode(ViewMode mode) {
  mode_ = mode;
  FollowSize();
  Redraw();
}

void ImageView::SetLocked(bool locked) {
  if (locked_ == locked) return;
  if (locked) HoldOriginal(false);
  locked_ = locked;
  ShowPicking();
}

void ImageView::ShowPicking() {
  // While it is locked, the pointer looks as in the whole window.
  if (picking_ && !locked_) {
    setCursor(Qt::CrossCursor);
  } else {
    unsetCursor();
  }
}

void ImageView::HoldOriginal(bool hold) {
  const bool held = hold && Usable();
  if (held == holdOriginal_) return;
  holdOriginal_ = held;
  Redraw();
  emit originalHeld(held);
}

void ImageView::SetPicking(bool picking) {
  if (picking_ == picking) return;
  picking_ = picking;
  ShowPicking();
  emit pickingChanged(picking);
}

void ImageView::PlaceRectangle() {
  rectangle_.PlaceAt(geometry_.pictureWidth() / 2, geometry_.pictureHeight() / 2);
  Redraw();
}

void ImageView::SetRectangleShown(bool shown) {
  if (rectangleShown_ == shown) return;
  rectangleShown_ = shown;
  if (!shown) SetPicking(false);
  unsetCursor();
  Redraw();
}

void ImageView::SetLabels(const Labels& labels) {
  labels_ = labels;
  update();
}

bool ImageView::RectangleUsable() const {
  return rectangleShown_ && rectangle_.rect() && !locked_ && mode_ != ViewMode::kNoise;
}

int ImageView::shown() const {
  if (geometry_.empty()) return kDrawNothing;
  if (holdOriginal_) return kDrawOriginal;
  return mode_ == ViewMode::kNoise ? kDrawNoise : kDrawResult;
}

// ---- Zoom and moves ----

void ImageView::ZoomIn() {
  if (!Usable()) return;
  geometry_.ZoomIn();
  AfterZoom();
}

void ImageView::ZoomOut() {
  if (!Usable()) return;
  geometry_.ZoomOut();
  AfterZoom();
}

void ImageView::SetZoom(double zoom) {
  if (!Usable()) return;
  geometry_.SetZoom(zoom);
  AfterZoom();
}

void ImageView::Fit() {
  if (!Usable()) return;
  geometry_.Fit(ViewGeometry::FitLimit::kFree);
  AfterZoom();
}

void ImageView::Move(Direction direction) {
  if (!Usable()) return;
  geometry_.Move(direction);
  Redraw();
}

void ImageView::AfterZoom() {
  Redraw();
  emit zoomChanged(geometry_.zoom());
}

void ImageView::FollowSize() {
  scale_ = devicePixelRatioF();
  const int width = static_cast<int>(std::lround(QWidget::width() * scale_));
  const int height = static_cast<int>(std::lround(QWidget::height() * scale_));
  const double before = geometry_.zoom();
  geometry_.SetViewSize(mode_ == ViewMode::kSideBySide ? std::max((width - kPaneGap) / 2, 1) : width, height);
  if (geometry_.zoom() != before) emit zoomChanged(geometry_.zoom());
}

// ---- Painting ----

void ImageView::Redraw() {
  const bool outlined = rectangleShown_ && mode_ != ViewMode::kNoise;
  renderer_.SetRectangle(outlined ? rectangle_.rect() : std::nullopt);
  renderer_.SetSplit(mode_ == ViewMode::kSplit && !holdOriginal_ ? SplitColumn() : -1);
  update();
}

void ImageView::DrawPane(QPainter& painter, int which, int left) {
  renderer_.RenderView(geometry_, which);
  const picture::SBxPicBuf& buffer = renderer_.buffer();
  if (buffer.samples == nullptr) return;
  QImage image(buffer.samples, buffer.width, buffer.height, buffer.rowStride, QImage::Format_BGR888);
  image.setDevicePixelRatio(devicePixelRatioF());
  painter.drawImage(QPointF(left / devicePixelRatioF(), 0), image);
}

void ImageView::paintEvent(QPaintEvent* /*event*/) {
  // On a screen of another scale, the same size is another number of pixels, and no resizing tells of it.
  if (scale_ != devicePixelRatioF()) {
    FollowSize();
    Redraw();
  }
  QPainter painter(this);
  if (geometry_.empty()) {
    // All of it: a pane of what was there would stay.
    const int grey = renderer_.background();
    return painter.fillRect(rect(), QColor(grey, grey, grey));
  }
  DrawComparison(painter);
  DrawLabels(painter);
}

void ImageView::DrawComparison(QPainter& painter) {
  if (mode_ == ViewMode::kSideBySide) {
    painter.fillRect(rect(), palette().color(QPalette::Window));
    DrawPane(painter, kDrawOriginal, 0);
    DrawPane(painter, shown(), geometry_.viewWidth() + kPaneGap);
    return;
  }
  DrawPane(painter, shown(), 0);
  if (mode_ != ViewMode::kSplit || holdOriginal_) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  const double x = SplitColumn() / devicePixelRatioF();
  painter.drawLine(QPointF(x, 0), QPointF(x, height()));
}

void ImageView::DrawLabels(QPainter& painter) {
  const QRectF whole = rect();
  const QString& present = holdOriginal_ ? labels_.original : labels_.result;
  const double scale = devicePixelRatioF();
  if (mode_ == ViewMode::kSideBySide) {
    const double width = geometry_.viewWidth() / scale;
    DrawSideLabel(painter, {0.0, 0.0, width, whole.height()}, Side::kLeft, labels_.original);
    const double second = (geometry_.viewWidth() + kPaneGap) / scale;
    DrawSideLabel(painter, {second, 0.0, width, whole.height()}, Side::kRight, present);
  } else if (mode_ == ViewMode::kSplit && !holdOriginal_) {
    const double x = SplitColumn() / scale;
    DrawSideLabel(painter, {0.0, 0.0, x, whole.height()}, Side::kLeft, labels_.original);
    DrawSideLabel(painter, {x, 0.0, whole.width() - x, whole.height()}, Side::kRight, labels_.result);
  } else if (holdOriginal_) {
    DrawSideLabel(painter, whole, Side::kLeft, labels_.original);
  } else if (mode_ == ViewMode::kNoise) {
    DrawSideLabel(painter, whole, Side::kRight, labels_.noise);
  }
}

void ImageView::resizeEvent(QResizeEvent* event) {
  FollowSize();
  Redraw();
  QWidget::resizeEvent(event);
}

void ImageView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) Redraw();
  QWidget::changeEvent(event);
}

// ---- Pointer ----

QPoint ImageView::DevicePoint(const QPointF& position) const {
  const double scale = devicePixelRatioF();
  QPoint point(static_cast<int>(std::floor(position.x() * scale)),
               static_cast<int>(std::floor(position.y() * scale)));
  const int second = geometry_.viewWidth() + kPaneGap;
  if (mode_ == ViewMode::kSideBySide && point.x() >= second) point.rx() -= second;
  return point;
}

QPoint ImageView::PicturePoint(const QPoint& device) const {
  double x = 0.0;
  double y = 0.0;
  geometry_.Map().MapPointDstToSrc(&x, &y, device.x(), device.y());
  const auto whole = [](double value) { return static_cast<int>(std::clamp(std::floor(value), -1e6, 1e6)); };
  return {whole(x), whole(y)};
}

int ImageView::SplitColumn() const {
  return static_cast<int>(std::lround(split_ * geometry_.viewWidth()));
}

unsigned ImageView::EdgesAt(const QPoint& device) const {
  if (!RectangleUsable()) return kNoEdge;
  const QPoint picture = PicturePoint(device);
  const double reach = kEdgeReach * devicePixelRatioF() / geometry_.zoom();
  return rectangle_.EdgesAt(picture.x(), picture.y(), static_cast<int>(std::lround(std::min(reach, 1e6))));
}

bool ImageView::OverSplit(const QPoint& device) const {
  return mode_ == ViewMode::kSplit && std::abs(device.x() - SplitColumn()) <= kSplitReach;
}

void ImageView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) HoldOriginal(true);
  if (event->button() == Qt::LeftButton && !geometry_.empty()) BeginGesture(DevicePoint(event->position()));
}

void ImageView::BeginGesture(const QPoint& at) {
  last_ = at;
  before_ = rectangle_.rect();
  const QPoint picture = PicturePoint(at);
  if (OverSplit(at)) {
    gesture_ = Gesture::kSplit;
  } else if (picking_ && !locked_) {
    gesture_ = Gesture::kPickRectangle;
    anchor_ = picture;
  } else if (edges_ = EdgesAt(at); edges_ != kNoEdge) {
    gesture_ = Gesture::kResizeRectangle;
    anchor_ = picture;
  } else if (RectangleUsable() && rectangle_.Contains(picture.x(), picture.y())) {
    gesture_ = Gesture::kMoveRectangle;
    anchor_ = picture;
  } else {
    gesture_ = Gesture::kPan;
  }
}

void ImageView::ContinueGesture(const QPoint& at) {
  const QPoint picture = PicturePoint(at);
  switch (gesture_) {
    case Gesture::kNone:
      return;
    case Gesture::kPan:
      geometry_.Drag(last_.x(), last_.y(), at.x(), at.y());
      break;
    case Gesture::kMoveRectangle:
      rectangle_.MoveBy(picture.x() - anchor_.x(), picture.y() - anchor_.y());
      anchor_ = picture;
      emit rectangleMoving();
      break;
    case Gesture::kResizeRectangle:
      rectangle_.ResizeBy(edges_, picture.x() - anchor_.x(), picture.y() - anchor_.y());
      anchor_ = picture;
      emit rectangleMoving();
      break;
    case Gesture::kPickRectangle:
      rectangle_.PlaceBetween(anchor_.x(), anchor_.y(), picture.x(), picture.y());
      emit rectangleMoving();
      break;
    case Gesture::kSplit:
      split_ = std::clamp(at.x() / static_cast<double>(std::max(geometry_.viewWidth(), 1)), 0.0, 1.0);
      break;
  }
  last_ = at;
  Redraw();
}

void ImageView::mouseMoveEvent(QMouseEvent* event) {
  const QPoint at = DevicePoint(event->position());
  if (gesture_ == Gesture::kNone || !event->buttons().testFlag(Qt::LeftButton)) return UpdateCursor(at);
  if (rect().contains(event->position().toPoint())) ContinueGesture(at);
}

void ImageView::UpdateCursor(const QPoint& at) {
  if (picking_ || locked_) return;
  const QPoint picture = PicturePoint(at);
  if (!geometry_.empty() && OverSplit(at)) {
    setCursor(Qt::SplitHCursor);
  } else if (const unsigned edges = EdgesAt(at); edges != kNoEdge) {
    setCursor(CursorOf(edges));
  } else if (RectangleUsable() && rectangle_.Contains(picture.x(), picture.y())) {
    setCursor(Qt::SizeAllCursor);
  } else {
    unsetCursor();
  }
}

void ImageView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) HoldOriginal(false);
  if (event->button() != Qt::LeftButton) return;
  const Gesture ended = std::exchange(gesture_, Gesture::kNone);
  if (ended == Gesture::kPickRectangle) {
    // A click without a drag places one of the usual size.
    if (PicturePoint(DevicePoint(event->position())) == anchor_) rectangle_.PlaceAt(anchor_.x(), anchor_.y());
    SetPicking(false);
    Redraw();
  }
  // A click without a move leaves the preview as it is.
  const bool moved = ended == Gesture::kMoveRectangle || ended == Gesture::kResizeRectangle;
  if (ended == Gesture::kPickRectangle || (moved && !SameRect(before_, rectangle_.rect())))
    emit rectangleChanged();
}

void ImageView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) Fit();
}

void ImageView::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (gesture_ != Gesture::kNone || !Usable()) return;
  wheel_ += event->angleDelta().y();
  const QPoint at = DevicePoint(event->position());
  for (; std::abs(wheel_) >= kWheelStep; wheel_ -= wheel_ > 0 ? kWheelStep : -kWheelStep) {
    geometry_.Wheel(at.x(), at.y(), wheel_);
  }
  AfterZoom();
}

}  // namespace mirellon::ui
