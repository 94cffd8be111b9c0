#include "ui/model/preview_rectangle.h"

#include <algorithm>
#include <cstdlib>

namespace mirellon::ui {

namespace {

// The two ends of one direction after one of them has been moved.
struct Span {
  int low;
  int high;
};
Span MoveEnd(Span span, bool low, bool high, int by, int limit) {
  if (low) {
    span.low = std::clamp(span.low + by, std::max(0, span.high - PreviewRectangle::kMostSide),
                          std::max(0, span.high - PreviewRectangle::kLeastSide));
  } else if (high) {
    span.high = std::clamp(span.high + by, std::min(limit, span.low + PreviewRectangle::kLeastSide),
                           std::min(limit, span.low + PreviewRectangle::kMostSide));
  }
  return span;
}

// Which end of a direction is within reach, if any.
unsigned EndAt(int at, Span span, int reach, unsigned low, unsigned high) {
  const int within = std::min(reach, (span.high - span.low) / 4);
  if (std::abs(at - span.low) <= within) return low;
  return std::abs(at - span.high) <= within ? high : kNoEdge;
}

}  // namespace

bool SameRect(const std::optional<PictureRect>& a, const std::optional<PictureRect>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

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

void PreviewRectangle::ResizeBy(unsigned edges, int dx, int dy) {
  if (!rect_) return;
  const Span across =
      MoveEnd({rect_->left, rect_->right}, (edges & kLeftEdge) != 0, (edges & kRightEdge) != 0, dx, width_);
  const Span down =
      MoveEnd({rect_->top, rect_->bottom}, (edges & kTopEdge) != 0, (edges & kBottomEdge) != 0, dy, height_);
  rect_ = PictureRect{across.low, down.low, across.high, down.high};
}

unsigned PreviewRectangle::EdgesAt(int x, int y, int reach) const {
  if (!rect_ || x < rect_->left - reach || x > rect_->right + reach || y < rect_->top - reach ||
      y > rect_->bottom + reach) {
    return kNoEdge;
  }
  return EndAt(x, {rect_->left, rect_->right}, reach, kLeftEdge, kRightEdge) |
         EndAt(y, {rect_->top, rect_->bottom}, reach, kTopEdge, kBottomEdge);
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
