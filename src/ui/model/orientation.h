// How a photograph is turned to stand upright.
#pragma once

#include "picture/pic_buf.h"
#include "ui/model/preview_rectangle.h"

namespace mirellon::ui {

// EXIF's eight values, by where the stored picture's first row and first column belong. Engine and files know
// the picture as it is stored; what is shown, and all that the pointer does, is upright.
enum class Orientation {
  kUpright = 1,
  kMirrored = 2,     // left and right exchanged
  kHalfTurned = 3,   // by 180 degrees
  kUpsideDown = 4,   // top and bottom exchanged
  kTransposed = 5,   // rows are columns
  kQuarterLeft = 6,  // stored a quarter turned to the left: shown a quarter to the right
  kTransversed = 7,  // rows are columns, from the other corner
  kQuarterRight = 8,
};

// The upright one for any other number.
[[nodiscard]] Orientation OrientationOf(int exifValue);

// Whether width and height change places.
[[nodiscard]] bool SwapsSides(Orientation orientation);

// A rectangle of the upright picture in the stored one, which is `width` x `height`.
[[nodiscard]] PictureRect StoredRect(Orientation orientation, int width, int height,
                                     const PictureRect& upright);

// The stored picture upright; of 8 bits and three components. Empty when memory was refused.
[[nodiscard]] picture::PicBuf Upright(Orientation orientation, const picture::SBxPicBuf& stored);

}  // namespace mirellon::ui
