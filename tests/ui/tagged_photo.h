// Photographs that say how they are to be shown.
#pragma once

#include <filesystem>
#include <map>
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

// EXIF texts by their names ("Exif.Image.Make"): puts them into a file, and reads one ("" if there is none).
void WriteTags(const std::filesystem::path& file, const std::map<std::string, std::string>& tags);
[[nodiscard]] std::string TagOf(const std::filesystem::path& file, const std::string& name);

}  // namespace mirellon::test
