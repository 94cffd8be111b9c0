// Skin images brought onto a painter, on whole device pixels.
#pragma once

#include <QPainter>
#include <QRectF>

#include "skin/skin_images.h"

namespace mirellon::skin {

// Nine pieces: the corners as they are, the edges stretched along, the middle stretched both ways. The target
// is in the painter's units and is moved onto whole device pixels; one smaller than the corners gets smaller
// corners.
void DrawNinePatch(QPainter& painter, const QRectF& target, const SkinImage& image);

// As it is, its middle on the target's.
void DrawCentred(QPainter& painter, const QRectF& target, const SkinImage& image);

// A painter with the images at its scale. What draws is false when the image is missing, and nothing is drawn
// then.
class SkinCanvas {
 public:
  SkinCanvas(SkinImages& images, QPainter& painter);

  [[nodiscard]] QPainter& painter() const { return painter_; }
  [[nodiscard]] const Scheme& scheme() const { return images_.scheme(); }

  [[nodiscard]] bool Has(Part part, PartState state) const { return !Image(part, state).missing(); }
  bool Stretch(Part part, PartState state, const QRectF& target) const;
  bool Centre(Part part, PartState state, const QRectF& target) const;

 private:
  [[nodiscard]] SkinImage Image(Part part, PartState state) const {
    return images_.Find(part, state, scale_);
  }

  SkinImages& images_;
  QPainter& painter_;
  qreal scale_;
};

}  // namespace mirellon::skin
