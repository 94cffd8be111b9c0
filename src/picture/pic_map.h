// The mapping between a picture and the window that shows it.
#pragma once

namespace mirellon::picture {

// A similarity: the source point (sourceX, sourceY) appears at the destination point (destinationX,
// destinationY), magnified by `zoom` (destination pixels per source pixel) and turned by `rotation` radians
// (from the x axis towards the y axis). Positions are continuous: the centre of pixel (i, j) is (i + 0.5, j +
// 0.5).
class CBxPicMap {
 public:
  CBxPicMap() = default;  // the identity
  CBxPicMap(double destinationX, double destinationY, double sourceX, double sourceY, double zoom,
            double rotation);

  // Recomputes the mapping. A zoom that is not a positive finite number is taken as 1, a rotation that is not
  // finite as 0.
  void Compute(double destinationX, double destinationY, double sourceX, double sourceY, double zoom,
               double rotation);

  // The source position of the centre of destination pixel (destinationX, destinationY).
  void MapPointDstToSrc(double* x, double* y, int destinationX, int destinationY) const;
  // The destination pixel that holds the source position, rounded down; saturated to the range of int, 0 for
  // what is not a number.
  void MapPointSrcToDst(int* x, int* y, double sourceX, double sourceY) const;

  // Whether rows and columns stay such: the source x then depends on the destination x alone, y on y alone.
  [[nodiscard]] bool Upright() const { return sine_ == 0.0 && cosine_ == 1.0; }

 private:
  double destinationX_ = 0.0;
  double destinationY_ = 0.0;
  double sourceX_ = 0.0;
  double sourceY_ = 0.0;
  double zoom_ = 1.0;
  double cosine_ = 1.0;
  double sine_ = 0.0;
};

}  // namespace mirellon::picture
