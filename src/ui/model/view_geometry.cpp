#include "ui/model/view_geometry.h"

#include <algorithm>
#include <utility>

namespace mirellon::ui {

void ViewGeometry::SetViewSize(int width, int height) {
  targetX_ += (width - viewWidth_) / 2.0;
  targetY_ += (height - viewHeight_) / 2.0;
  viewWidth_ = width;
  viewHeight_ = height;
  if (fitted_) Fit(limit_);
}

void ViewGeometry::SetPictureSize(int width, int height) {
  pictureWidth_ = width;
  pictureHeight_ = height;
}

void ViewGeometry::Reset() {
  SetPictureSize(0, 0);
  CentreOn(0.0, 0.0);
  zoom_ = 1.0;
  fitted_ = false;
}

void ViewGeometry::Fit(FitLimit limit) {
  if (empty()) return;
  CentreOn(pictureWidth_ / 2.0, pictureHeight_ / 2.0);
  zoom_ = std::min((std::max(viewWidth_, 1) / 2.0) / (pictureWidth_ / 2.0),
                   (std::max(viewHeight_, 1) / 2.0) / (pictureHeight_ / 2.0));
  if (limit == FitLimit::kCapped) zoom_ = std::min(zoom_, kMostZoom);
  limit_ = limit;
  fitted_ = true;
}

void ViewGeometry::SetZoom(double zoom) {
  zoom_ = zoom;
  fitted_ = false;
}

void ViewGeometry::Wheel(int x, int y, int delta) {
  if (empty()) return;
  const int heldX = std::clamp(x, 0, std::max(viewWidth_ - 1, 0));
  const int heldY = std::clamp(y, 0, std::max(viewHeight_ - 1, 0));
  double pictureX = 0.0;
  double pictureY = 0.0;
  Map().MapPointDstToSrc(&pictureX, &pictureY, heldX, heldY);
  centreX_ = pictureX;
  centreY_ = pictureY;
  targetX_ = heldX + 0.5;
  targetY_ = heldY + 0.5;
  const double least = kLeastLongSide / std::max(pictureWidth_, pictureHeight_);
  SetZoom(std::max(std::min(zoom_ * (delta > 0 ? kZoomInStep : kZoomOutStep), kMostZoom), least));
}

void ViewGeometry::Drag(int fromX, int fromY, int toX, int toY) {
  centreX_ += (fromX - toX) / zoom_;
  centreY_ += (fromY - toY) / zoom_;
  fitted_ = false;
}

void ViewGeometry::Move(Direction direction) {
  const double stepX = viewWidth_ / zoom_ / 10.0;
  const double stepY = viewHeight_ / zoom_ / 10.0;
  if (direction == Direction::kLeft) centreX_ -= stepX;
  if (direction == Direction::kRight) centreX_ += stepX;
  if (direction == Direction::kUp) centreY_ -= stepY;
  if (direction == Direction::kDown) centreY_ += stepY;
  fitted_ = false;
}

void ViewGeometry::CentreOn(double x, double y) {
  centreX_ = x;
  centreY_ = y;
  targetX_ = viewWidth_ / 2.0;
  targetY_ = viewHeight_ / 2.0;
  fitted_ = false;
}

picture::CBxPicMap ViewGeometry::Map(double left, double top, double scale) const {
  return {targetX_, targetY_, (centreX_ - left) * scale, (centreY_ - top) * scale, zoom_ / scale, 0.0};
}

picture::CBxRect<int> ViewGeometry::Covered() const {
  const picture::CBxPicMap map = Map();
  const auto shown = [&map](int viewX, int viewY, int width, int height) {
    double x = 0.0;
    double y = 0.0;
    map.MapPointDstToSrc(&x, &y, viewX, viewY);
    return std::pair(x >= 0.0 && x < width, y >= 0.0 && y < height);
  };
  picture::CBxRect<int> covered{0, 0, viewWidth_, viewHeight_};
  const auto column = [&](int x) { return shown(x, 0, pictureWidth_, pictureHeight_).first; };
  const auto row = [&](int y) { return shown(0, y, pictureWidth_, pictureHeight_).second; };
  while (covered.left < covered.right && !column(covered.left)) ++covered.left;
  while (covered.right > covered.left && !column(covered.right - 1)) --covered.right;
  while (covered.top < covered.bottom && !row(covered.top)) ++covered.top;
  while (covered.bottom > covered.top && !row(covered.bottom - 1)) --covered.bottom;
  return covered;
}

}  // namespace mirellon::ui
