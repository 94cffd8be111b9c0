#include "ui/model/preview_rectangle.h"

#include <algorithm>
#include <cstdlib>

namespace mirellon::ui {

void PreviewRectangle::SetPicture(int width, int height) {
  width_ = width;
  height_ = height;
  Remove();
}

void PreviewRectangle::PlaceAt(int x, int y) {
  const int width = std::min(kWidth, width_);
  const int height = std::min(kHeight, height_);
  Place(x - width / 2, y - height / 2, width, height);
}

void PreviewRectangle::PlaceBetween(int x1, int y1, int x2, int y2) {
  Place(std::min(x1, x2), std::min(y1, y2), std::clamp(std::abs(x2 - x1), kLeastSide, kMostSide),
        std::clamp(std::abs(y2 - y1), kLeastSide, kMostSide));
}

void PreviewRectangle::MoveBy(int dx, int dy) {
  if (!rect_) return;
  Place(rect_->left + dx, rect_->top + dy, rect_->right - rect_->left, rect_->bottom - rect_->top);
}

bool PreviewRectangle::Contains(int x, int y) const {
  return rect_ && x >= rect_->left && x < rect_->right && y >= rect_->top && y < rect_->bottom;
}

void PreviewRectangle::Place(int left, int top, int width, int height) {
  if (width_ == 0 || height_ == 0) return;
  const int heldWidth = std::min(width, width_);
  const int heldHeight = std::min(height, height_);
  const int heldLeft = std::clamp(left, 0, width_ - heldWidth);
  const int heldTop = std::clamp(top, 0, height_ - heldHeight);
  rect_ = PictureRect{heldLeft, heldTop, heldLeft + heldWidth, heldTop + heldHeight};
}

}  // namespace mirellon::ui
