// Median filters against single bright or dark pixels.
#pragma once

#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// Filters a plane (one component, 8 or 16 bits) into `destination` of the same shape, reading `source`.
// Mode 1 (common): the median of each full 3 x 3 neighbourhood; the outermost rows and columns keep the
// values that the destination already holds, and a plane under 3 rows is left alone, so the caller first
// makes the destination a copy of the source. Mode 2 (strong): for every pixel the median of the 7 x 7 window
// clipped to the plane, the upper one for an even count. Any other mode does nothing.
void RemovePointArtefacts(picture::SBxPicBuf& destination, const picture::SBxPicBuf& source, int mode);

}  // namespace mirellon::engine
