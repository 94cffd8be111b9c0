// The part of the photograph that is previewed.
#pragma once

#include <optional>

#include "picture/pic_buf_api.h"

namespace mirellon::ui {

using PictureRect = picture::CBxRect<int>;

// Both the same place, or both nothing.
[[nodiscard]] bool SameRect(const std::optional<PictureRect>& a, const std::optional<PictureRect>& b);

// Edges of a rectangle, to be combined.
inline constexpr unsigned kNoEdge = 0;
inline constexpr unsigned kLeftEdge = 1;
inline constexpr unsigned kTopEdge = 2;
inline constexpr unsigned kRightEdge = 4;
inline constexpr unsigned kBottomEdge = 8;

// A rectangle in picture coordinates, never beyond the photograph.
class PreviewRectangle {
 public:
  static constexpr int kWidth = 640;  // pixels of the photograph, when placed without a size of its own
  static constexpr int kHeight = 480;
  static constexpr int kLeastSide = 16;
  static constexpr int kMostSide = 1600;

  // Without a rectangle.
  void SetPicture(int width, int height);
  // Of the usual size, its middle as near to the point as the photograph allows.
  void PlaceAt(int x, int y);
  // From one corner to the other, in any order; too small ones grow, too large ones shrink to the limits.
  void PlaceBetween(int x1, int y1, int x2, int y2);
  void MoveBy(int dx, int dy);
  // Moves the gripped edges by so much, within the limits; the others stay where they are.
  void ResizeBy(unsigned edges, int dx, int dy);
  void Remove() { rect_.reset(); }

  [[nodiscard]] bool Contains(int x, int y) const;
  // The edges within `reach` of the point, one or a corner's two; kNoEdge: it is elsewhere. A small rectangle
  // keeps its inside for moving.
  [[nodiscard]] unsigned EdgesAt(int x, int y, int reach) const;
  [[nodiscard]] const std::optional<PictureRect>& rect() const { return rect_; }

 private:
  void Place(int left, int top, int width, int height);

  int width_ = 0;
  int height_ = 0;
  std::optional<PictureRect> rect_;
};

}  // namespace mirellon::ui
