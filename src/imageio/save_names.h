// What a saved picture is called.
#pragma once

#include <filesystem>

namespace mirellon::imageio {

// What the save dialog starts with. The formats offered are "*.bmp", "*.tif", "*.png", "*.jpg" for 8 bits and
// "*.tif", "*.png" for 16, counted from 1.
struct SaveProposal {
  std::filesystem::path path;              // "NAME-denoised" beside the photograph; empty: no proposal
  int filterIndex = 1;                     // the format selected
  std::filesystem::path defaultExtension;  // ".jpg" ...; empty unless the photograph has one of the formats'
};

// For a result of that depth of the photograph `current`. No proposal for a path without a folder or a name
// without a dot. At 16 bits a PNG photograph selects index 1, like a TIFF.
[[nodiscard]] SaveProposal ProposeSave(const std::filesystem::path& current, int bitsPerComponent);

// The name chosen, with the extension of the selected format appended unless it ends in one of the depth's
// extensions already (four characters, any case).
[[nodiscard]] std::filesystem::path CompleteName(const std::filesystem::path& chosen, int bitsPerComponent,
                                                 int filterIndex);

}  // namespace mirellon::imageio
