// What a photograph tells about itself, as display texts.
#pragma once

#include <filesystem>
#include <string>

namespace mirellon::imageio {

// Seven texts of at most 127 characters each; empty when the photograph does not tell.
struct ExifSummary {
  std::wstring fNumber;
  std::wstring exposure;
  std::wstring dimensions;
  std::wstring iso;
  std::wstring make;   // trailing blanks kept: they matter for the camera key
  std::wstring model;  // likewise
  std::wstring dateTaken;
};

// Reads the summary of a file in any format; a file without EXIF data, or with data too damaged to read,
// gives empty texts. Never throws.
[[nodiscard]] ExifSummary ReadExifSummary(const std::filesystem::path& file);

}  // namespace mirellon::imageio
