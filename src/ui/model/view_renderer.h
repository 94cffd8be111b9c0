// Draws a photograph through its geometry into the view's buffer.
#pragma once

#include <cstdint>
#include <optional>

#include "ui/model/display_picture.h"
#include "ui/model/preview_rectangle.h"
#include "ui/model/view_geometry.h"

namespace mirellon::ui {

// Which picture is drawn; every other value clears to the background.
inline constexpr int kDrawNothing = 0;
inline constexpr int kDrawOriginal = 1;
inline constexpr int kDrawResult = 2;
// What was taken away, as it shows in the view: for each sample 128 + 4 * (original - result), held to 0 ...
// 255.
inline constexpr int kDrawNoise = 3;

enum class Interpolation { kConstant = 0, kBilinear = 1, kBicubic = 2 };
// One screen pixel per sample and large magnifications show samples as they are; between, they are smoothed.
[[nodiscard]] Interpolation InterpolationFor(double zoom);

// All of it is 8 bits, three components, blue first, in device pixels. Never throws.
class ViewRenderer {
 public:
  // The preview, shown in place of the part of the result that it covers.
  struct Patch {
    PictureRect rect{};
    SharedDisplay picture;
  };

  void SetBackground(std::uint8_t grey) { background_ = grey; }
  [[nodiscard]] std::uint8_t background() const { return background_; }
  // Null: there is none.
  void SetPicture(int which, SharedDisplay picture);
  void SetPatch(std::optional<Patch> patch) { patch_ = std::move(patch); }
  // Its outline is drawn over every picture.
  void SetRectangle(const std::optional<PictureRect>& rect) { rectangle_ = rect; }
  // Left of the column the original is drawn, whatever was asked for; below 0: no such column.
  void SetSplit(int column) { split_ = column; }

  // Draws the picture asked for. With `redraw` unset, a buffer that is still of the view's size is kept as it
  // is. True = only the background was drawn, there is no such picture (or no memory for a buffer: it is then
  // empty).
  bool RenderView(const ViewGeometry& geometry, int which, bool redraw = true);

  [[nodiscard]] const picture::SBxPicBuf& buffer() const { return buffer_.record(); }

 private:
  [[nodiscard]] const SharedDisplay& PictureOf(int which) const;
  [[nodiscard]] picture::PicBuf Blank(int width) const;  // of the background; empty without memory
  void Draw(const ViewGeometry& geometry, int which);
  void DrawSplit(const ViewGeometry& geometry);
  void DrawNoise(const ViewGeometry& geometry);
  void DrawOutline(const ViewGeometry& geometry);

  std::uint8_t background_ = 35;
  SharedDisplay original_;
  SharedDisplay result_;
  std::optional<Patch> patch_;
  std::optional<PictureRect> rectangle_;
  int split_ = -1;
  picture::PicBuf buffer_;
};

}  // namespace mirellon::ui
