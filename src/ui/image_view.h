// The widget that shows the photograph.
#pragma once

#include <QPoint>
#include <QWidget>
#include <optional>

#include "ui/model/preview_rectangle.h"
#include "ui/model/view_geometry.h"
#include "ui/model/view_renderer.h"

namespace mirellon::ui {

enum class ViewMode {
  kSingle,      // the result; the original while the right mouse button is held
  kSplit,       // the original left of a line that can be dragged
  kSideBySide,  // original and result, moved together
  kNoise,       // what the run took away
};

// Draws through a ViewRenderer in device pixels, so it is sharp at every scale of the screen. Zoom, moves and
// the comparison are refused while it is locked (the photograph is being denoised).
class ImageView : public QWidget {
  Q_OBJECT

 public:
  explicit ImageView(QWidget* parent = nullptr);

  // Null: none. The photograph is fitted, at most 800 %.
  void ShowPhotograph(const SharedDisplay& original);
  void ShowResult(const SharedDisplay& result);
  // The same photograph and result in other colours. The preview is no longer shown.
  void ShowAnew(const SharedDisplay& original, const SharedDisplay& result);
  // A preview in place of its part of the result; nothing: no longer.
  void ShowPatch(std::optional<ViewRenderer::Patch> patch);
  void SetBackground(std::uint8_t grey);
  void SetMode(ViewMode mode);
  [[nodiscard]] ViewMode mode() const { return mode_; }
  void SetLocked(bool locked);
  // The original instead of the result, as the right button does.
  void HoldOriginal(bool hold);
  // The next press of the left button begins a new preview rectangle.
  void SetPicking(bool picking);
  void PlaceRectangle();  // of the usual size in the photograph's middle
  // A rectangle that is not shown cannot be moved either.
  void SetRectangleShown(bool shown);
  // What the two sides of a comparison and the other pictures are called; empty: no name.
  struct Labels {
    QString original;
    QString result;
    QString noise;
  };
  void SetLabels(const Labels& labels);

  void ZoomIn();
  void ZoomOut();
  void SetZoom(double zoom);  // about the middle of what is seen
  void Fit();
  void Move(Direction direction);

  [[nodiscard]] const ViewGeometry& geometry() const { return geometry_; }
  [[nodiscard]] const PreviewRectangle& rectangle() const { return rectangle_; }
  [[nodiscard]] bool rectangleShown() const { return rectangleShown_; }
  [[nodiscard]] bool picking() const { return picking_; }
  [[nodiscard]] bool holdsOriginal() const { return holdOriginal_; }
  // Which picture is drawn now, as the renderer numbers them.
  [[nodiscard]] int shown() const;

 signals:
  void zoomChanged(double zoom);
  void rectangleChanged();  // placed or moved by the user; the gesture is complete
  void rectangleMoving();   // and while it lasts
  void pickingChanged(bool picking);
  void originalHeld(bool held);
  void stopRequested();  // by Escape, when there is nothing in the view to leave

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class Gesture { kNone, kPan, kMoveRectangle, kResizeRectangle, kPickRectangle, kSplit };

  void Redraw();
  void AfterZoom();
  void FollowSize();
  void ShowPicking();  // by the pointer's look
  void BeginGesture(const QPoint& at);
  void ContinueGesture(const QPoint& at);
  void UpdateCursor(const QPoint& at);
  [[nodiscard]] bool PickByKey(int key);
  [[nodiscard]] bool MoveSplitByKey(const QPoint& direction);
  [[nodiscard]] bool ChangeRectangleByKey(const QPoint& direction, bool resize);
  [[nodiscard]] bool Usable() const { return !geometry_.empty() && !locked_; }
  [[nodiscard]] QPoint DevicePoint(const QPointF& position) const;  // in the pane under the pointer
  [[nodiscard]] QPoint PicturePoint(const QPoint& device) const;
  [[nodiscard]] bool OverSplit(const QPoint& device) const;
  [[nodiscard]] int SplitColumn() const;
  void DrawPane(QPainter& painter, int which, int left);
  void DrawComparison(QPainter& painter);
  void DrawLabels(QPainter& painter);
  // The edges of the preview rectangle under the pointer.
  [[nodiscard]] unsigned EdgesAt(const QPoint& device) const;
  [[nodiscard]] bool RectangleUsable() const;

  ViewGeometry geometry_;
  ViewRenderer renderer_;
  PreviewRectangle rectangle_;
  ViewMode mode_ = ViewMode::kSingle;
  bool locked_ = false;
  bool holdOriginal_ = false;
  bool picking_ = false;
  bool rectangleShown_ = true;
  Labels labels_;
  unsigned edges_ = kNoEdge;  // being dragged
  double split_ = 0.5;        // of the view's width
  double scale_ = 1.0;        // device pixels to a logical one, as the geometry has it
  Gesture gesture_ = Gesture::kNone;
  QPoint last_;                        // pointer, device pixels
  QPoint anchor_;                      // where a picked rectangle began, picture coordinates
  std::optional<PictureRect> before_;  // the rectangle as the gesture found it
  int wheel_ = 0;                      // not yet a whole step
};

}  // namespace mirellon::ui
