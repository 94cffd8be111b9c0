// Where in the view the photograph lies.
#pragma once

#include "picture/pic_buf_api.h"
#include "picture/pic_map.h"

namespace mirellon::ui {

// Steps of the zoom commands, the wheel's limits, and the list's entries in percent.
inline constexpr double kZoomInStep = 1.2;
inline constexpr double kZoomOutStep = 0.8333333333333334;
inline constexpr double kMostZoom = 8.0;
inline constexpr double kLeastLongSide = 100.0;  // pixels of the view that the wheel leaves the longer side
inline constexpr double kZoomList[] = {10.0, 25.0, 50.0, 100.0, 150.0, 200.0, 400.0, 800.0};

enum class Direction { kLeft, kRight, kUp, kDown };

// A view of some size, a picture of some size, and the upright mapping between them. All view coordinates
// are device pixels, so that zoom 1.0 shows one sample as one pixel of the screen.
class ViewGeometry {
 public:
  // The view was given another size. A photograph that was fitted stays fitted; else what was in the view's
  // middle stays there.
  void SetViewSize(int width, int height);
  // Another photograph; the mapping is left to Fit.
  void SetPictureSize(int width, int height);
  // No photograph: zoom 100 %.
  void Reset();

  // The photograph's middle in the view's middle, as large as fits: at most 800 % after loading (kCapped),
  // however large on the user's wish (kFree).
  enum class FitLimit { kCapped, kFree };
  void Fit(FitLimit limit);

  // Without limits, about the point that the last wheel turn or fit has put in place.
  void ZoomIn() { SetZoom(zoom_ * kZoomInStep); }
  void ZoomOut() { SetZoom(zoom_ * kZoomOutStep); }
  void SetZoom(double zoom);
  // The wheel, at a point of the view: what lies under it stays under it, within the limits above.
  void Wheel(int x, int y, int delta);
  // The pointer dragged the photograph.
  void Drag(int fromX, int fromY, int toX, int toY);
  // A tenth of what is visible.
  void Move(Direction direction);
  // Brings a point of the photograph to the view's middle.
  void CentreOn(double x, double y);

  [[nodiscard]] double zoom() const { return zoom_; }
  [[nodiscard]] double centreX() const { return centreX_; }
  [[nodiscard]] double centreY() const { return centreY_; }
  [[nodiscard]] int viewWidth() const { return viewWidth_; }
  [[nodiscard]] int viewHeight() const { return viewHeight_; }
  [[nodiscard]] int pictureWidth() const { return pictureWidth_; }
  [[nodiscard]] int pictureHeight() const { return pictureHeight_; }
  [[nodiscard]] bool empty() const { return pictureWidth_ == 0 || pictureHeight_ == 0; }

  // From a picture that begins at (left, top) of the photograph and has `scale` of its samples to one of the
  // photograph, into the view.
  [[nodiscard]] picture::CBxPicMap Map(double left = 0.0, double top = 0.0, double scale = 1.0) const;
  // The view's pixels that show the photograph.
  [[nodiscard]] picture::CBxRect<int> Covered() const;

 private:
  int viewWidth_ = 0;
  int viewHeight_ = 0;
  int pictureWidth_ = 0;
  int pictureHeight_ = 0;
  double centreX_ = 0.0;  // of the photograph, shown at the target
  double centreY_ = 0.0;
  double targetX_ = 0.0;
  double targetY_ = 0.0;
  double zoom_ = 1.0;
  bool fitted_ = false;
  FitLimit limit_ = FitLimit::kCapped;
};

}  // namespace mirellon::ui
