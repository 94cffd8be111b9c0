#include "picture/pic_map.h"

#include <cmath>
#include <limits>

namespace mirellon::picture {

namespace {

int FlooredToInt(double value) {
  if (std::isnan(value)) return 0;
  constexpr int kLeast = std::numeric_limits<int>::min();
  constexpr int kLargest = std::numeric_limits<int>::max();
  const double floored = std::floor(value);
  if (floored <= static_cast<double>(kLeast)) return kLeast;
  if (floored >= static_cast<double>(kLargest)) return kLargest;
  return static_cast<int>(floored);
}

}  // namespace

CBxPicMap::CBxPicMap(double destinationX, double destinationY, double sourceX, double sourceY, double zoom,
                     double rotation) {
  Compute(destinationX, destinationY, sourceX, sourceY, zoom, rotation);
}

void CBxPicMap::Compute(double destinationX, double destinationY, double sourceX, double sourceY, double zoom,
                        double rotation) {
  destinationX_ = destinationX;
  destinationY_ = destinationY;
  sourceX_ = sourceX;
  sourceY_ = sourceY;
  zoom_ = std::isfinite(zoom) && zoom > 0.0 ? zoom : 1.0;
  const double angle = std::isfinite(rotation) ? rotation : 0.0;
  cosine_ = std::cos(angle);
  sine_ = std::sin(angle);
}

void CBxPicMap::MapPointDstToSrc(double* x, double* y, int destinationX, int destinationY) const {
  const double dx = (destinationX + 0.5 - destinationX_) / zoom_;
  const double dy = (destinationY + 0.5 - destinationY_) / zoom_;
  if (Upright()) {
    *x = sourceX_ + dx;
    *y = sourceY_ + dy;
    return;
  }
  *x = sourceX_ + (cosine_ * dx + sine_ * dy);
  *y = sourceY_ + (cosine_ * dy - sine_ * dx);
}

void CBxPicMap::MapPointSrcToDst(int* x, int* y, double sourceX, double sourceY) const {
  const double dx = sourceX - sourceX_;
  const double dy = sourceY - sourceY_;
  *x = FlooredToInt(destinationX_ + zoom_ * (cosine_ * dx - sine_ * dy));
  *y = FlooredToInt(destinationY_ + zoom_ * (sine_ * dx + cosine_ * dy));
}

}  // namespace mirellon::picture
