// What a photograph's file tells beside its pixels.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "imageio/exif_summary.h"

namespace mirellon::imageio {

// More than any real profile for a screen, camera or printer has.
inline constexpr std::size_t kMostProfileBytes = std::size_t{8} << 20U;

// Of a file without such data, or with data too damaged to read, the initial values.
struct PhotoMetadata {
  ExifSummary exif;
  int orientation = 1;          // 1 to 8: how the picture is to be turned to stand upright, as EXIF counts
  std::string profile;          // the embedded ICC profile's bytes, not examined; empty: none
  bool profileRefused = false;  // there is one, but it is cut off or larger than kMostProfileBytes
};

// One look into the file, in any format. Never throws.
[[nodiscard]] PhotoMetadata ReadPhotoMetadata(const std::filesystem::path& file);

}  // namespace mirellon::imageio
