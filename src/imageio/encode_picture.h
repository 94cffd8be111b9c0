// A bitmap's way into a file.
#pragma once

#include <string>

#include <FreeImage.h>

#include "base/checked_file.h"

namespace mirellon::imageio {

// Encodes into a file that was just opened. True = failed: `file.error()` tells of a write fault, and where
// it is 0, `cause` of the encoder's own complaint. An abort takes effect at the end of the encoder's work at
// the latest: the library cannot be stopped in between.
[[nodiscard]] bool EncodePicture(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, int flags,
                                 base::CheckedFile& file, std::string& cause);

}  // namespace mirellon::imageio
