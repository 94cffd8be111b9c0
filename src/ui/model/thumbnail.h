// Small pictures that show which photograph is meant.
#pragma once

#include "picture/pic_buf.h"
#include "ui/model/orientation.h"

namespace mirellon::ui {

// The picture upright, 8 bits and three components, its longer side
// at most `side` pixels; never enlarged. Each pixel is a mean of some of those it stands for. Empty when
// there is no picture (8 or 16 bits, 1 or 3 components) or memory is refused.
[[nodiscard]] picture::PicBuf MakeThumbnail(const picture::SBxPicBuf& source, int side,
                                            Orientation orientation);

}  // namespace mirellon::ui
