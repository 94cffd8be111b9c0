// The border that gives the filter something to look at beyond a picture's edge.
#pragma once

#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// Fills the border of `border` pixels around the inner part of a one-component plane by reflection that does
// not repeat the edge pixel: position -1 takes the value of 1, -2 that of 2. An index that falls beyond the
// other edge is reflected again until it lies inside; a side of one pixel is replicated. The inner part has
// at least one pixel. MirrorBorder8 takes 8-bit planes, MirrorBorder16 16-bit ones; rows may have gaps
// between them.
void MirrorBorder8(picture::SBxPicBuf& plane, int border);
void MirrorBorder16(picture::SBxPicBuf& plane, int border);

}  // namespace mirellon::engine
