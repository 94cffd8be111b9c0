// The similarity filter as it is defined, one plain loop per step: slow, and simple enough to be seen
// correct.
#pragma once

#include "picture/pic_buf.h"

namespace mirellon::test {

// Filters one component of even sides, 8 or 16 bits; guide is its 8-bit copy. Returns the filtered plane.
[[nodiscard]] picture::PicBuf ReferenceKernel(const picture::SBxPicBuf& source,
                                              const picture::SBxPicBuf& guide, double strength, int quality,
                                              double dynamicity);

// The same around a plane of any size: padded with zeros to even sides, filtered, cut back.
[[nodiscard]] picture::PicBuf ReferencePlane(const picture::SBxPicBuf& source, double strength, int quality,
                                             double dynamics);

// Weight of patch distance s for intensity v.
[[nodiscard]] unsigned ReferenceWeight(int v, int s, double dynamicity, double variance);

}  // namespace mirellon::test
