// How a photograph is to be turned to be seen upright.
#pragma once

#include <filesystem>

namespace mirellon::imageio {

inline constexpr int kUpright = 1;

// The value of the EXIF tag, 1 to 8: the first row and column as stored are seen at the 1 top left, 2 top
// right, 3 bottom right, 4 bottom left, 5 left top, 6 right top, 7 right bottom, 8 left bottom. 1 for a file
// that does not tell, or that cannot be read. Never throws.
[[nodiscard]] int ReadOrientation(const std::filesystem::path& file);

}  // namespace mirellon::imageio
