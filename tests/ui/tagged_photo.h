// Photographs that say how they are to be shown.
#pragma once

#include <filesystem>
#include <string>

#include "picture/pic_buf_api.h"

namespace mirellon::test {

// An ICC profile of a screen-like device: the primaries of a wide space, whose green lies far outside of
// sRGB's; the same white, gamma 2.2.
[[nodiscard]] std::string WideProfile();

// A PNG or TIFF with that orientation and, unless it is empty, that profile. Whether it is a sound one does
// not matter.
void WriteTaggedPhoto(const std::filesystem::path& file, const picture::SBxPicBuf& picture, int orientation,
                      const std::string& profile);

}  // namespace mirellon::test
