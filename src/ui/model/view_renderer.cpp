#include "ui/model/view_renderer.h"

#include <algorithm>
#include <utility>

namespace mirellon::ui {

namespace {

using picture::CBxPicBufAPI;
using picture::CBxPicMap;
using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr int kComponents = 3;
constexpr int kOutline = 2;  // pixels
constexpr int kNoiseGain = 4;

// Inverts a rectangle of the buffer, clipped.
void Invert(SBxPicBuf& buffer, PictureRect rect) {
  rect = {std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, buffer.width),
          std::min(rect.bottom, buffer.height)};
  for (int y = rect.top; y < rect.bottom; ++y) {
    auto* row = Row<std::uint8_t>(buffer, y);
    for (int i = rect.left * kComponents; i < rect.right * kComponents; ++i) {
      row[i] = static_cast<std::uint8_t>(~row[i]);
    }
  }
}

void Transform(SBxPicBuf& target, const SBxPicBuf& source, const CBxPicMap& map, Interpolation mode) {
  switch (mode) {
    case Interpolation::kConstant:
      return CBxPicBufAPI::TransformConstantFast(target, source, map);
    case Interpolation::kBilinear:
      return CBxPicBufAPI::TransformBilinearFast(target, source, map);
    case Interpolation::kBicubic:
      return CBxPicBufAPI::TransformBicubicFast(target, source, map);
  }
}

// A picture whose corner lies at (left, top) of the photograph.
void DrawDisplay(const ViewGeometry& geometry, const DisplayPicture& display, int left, int top,
                 SBxPicBuf& target) {
  const int level = display.LevelFor(geometry.zoom());
  const double scale = 1.0 / static_cast<double>(1 << level);
  Transform(target, display.level(level), geometry.Map(left, top, scale),
            InterpolationFor(geometry.zoom() / scale));
}

}  // namespace

Interpolation InterpolationFor(double zoom) {
  if (zoom < 1.0) return Interpolation::kBilinear;
  return zoom > 1.0 && zoom < 3.0 ? Interpolation::kBicubic : Interpolation::kConstant;
}

void ViewRenderer::SetPicture(int which, SharedDisplay picture) {
  if (which == kDrawOriginal) original_ = std::move(picture);
  if (which == kDrawResult) result_ = std::move(picture);
}

const SharedDisplay& ViewRenderer::PictureOf(int which) const {
  static const SharedDisplay kNone;
  if (which == kDrawOriginal) return original_;
  return which == kDrawResult || which == kDrawNoise ? result_ : kNone;
}

bool ViewRenderer::RenderView(const ViewGeometry& geometry, int which, bool redraw) {
  const bool sameSize = buffer_->width == geometry.viewWidth() && buffer_->height == geometry.viewHeight();
  const bool nothing = PictureOf(which) == nullptr;
  if (!sameSize) {
    CBxPicBufAPI::ReinitHeap(buffer_, geometry.viewWidth(), geometry.viewHeight(), kComponents, 8);
  }
  if (buffer_.empty()) return true;
  if (sameSize && !redraw && !nothing) return false;
  CBxPicBufAPI::SetConst(buffer_, {0, 0, buffer_->width, buffer_->height}, background_);
  if (nothing) return true;
  Draw(geometry, which);
  if (original_ != nullptr && which == kDrawNoise) DrawNoise(geometry);
  if (original_ != nullptr && split_ >= 0) DrawSplit(geometry);
  if (rectangle_) DrawOutline(geometry);
  return false;
}

void ViewRenderer::Draw(const ViewGeometry& geometry, int which) {
  DrawDisplay(geometry, *PictureOf(which), 0, 0, buffer_);
  if (which != kDrawOriginal && patch_ && patch_->picture != nullptr) {
    DrawDisplay(geometry, *patch_->picture, patch_->rect.left, patch_->rect.top, buffer_);
  }
}

PicBuf ViewRenderer::Blank(int width) const {
  PicBuf blank(width, buffer_->height, kComponents, 8);
  if (!blank.empty()) CBxPicBufAPI::SetConst(blank, {0, 0, width, blank->height}, background_);
  return blank;
}

void ViewRenderer::DrawSplit(const ViewGeometry& geometry) {
  PicBuf left = Blank(std::min(split_, buffer_->width));
  if (left.empty()) return;
  DrawDisplay(geometry, *original_, 0, 0, left);
  CBxPicBufAPI::CopyRect(buffer_, left, {0, 0}, {0, 0}, {left->width, left->height});
}

void ViewRenderer::DrawNoise(const ViewGeometry& geometry) {
  PicBuf original = Blank(buffer_->width);
  if (original.empty()) return;
  DrawDisplay(geometry, *original_, 0, 0, original);
  const PictureRect shown = geometry.Covered();
  for (int y = shown.top; y < shown.bottom; ++y) {
    const auto* from = Row<std::uint8_t>(original.record(), y);
    auto* to = Row<std::uint8_t>(buffer_.record(), y);
    for (int i = shown.left * kComponents; i < shown.right * kComponents; ++i) {
      to[i] = static_cast<std::uint8_t>(std::clamp(128 + kNoiseGain * (from[i] - to[i]), 0, 255));
    }
  }
}

void ViewRenderer::DrawOutline(const ViewGeometry& geometry) {
  const CBxPicMap map = geometry.Map();
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  map.MapPointSrcToDst(&left, &top, rectangle_->left, rectangle_->top);
  map.MapPointSrcToDst(&right, &bottom, rectangle_->right, rectangle_->bottom);
  if (right - left < 2 * kOutline || bottom - top < 2 * kOutline) return;
  Invert(buffer_, {left + kOutline, top, right - kOutline, top + kOutline});
  Invert(buffer_, {left + kOutline, bottom - kOutline, right - kOutline, bottom});
  Invert(buffer_, {left, top + kOutline, left + kOutline, bottom - kOutline});
  Invert(buffer_, {right - kOutline, top + kOutline, right, bottom - kOutline});
}

}  // namespace mirellon::ui
