// EXIF tags and the ICC profile, from the photograph into the new file.
#pragma once

#include <filesystem>
#include <string>

#include <FreeImage.h>

#include "base/run_control.h"
#include "imageio/metadata_tool.h"

namespace mirellon::imageio {

// Copies with the external tool exiftool. `workFile` is the encoded picture, alone in a private folder, under
// a name without surprises; the source is only read. A source without metadata is no fault. Returns a warning
// for the user, without a full stop, when metadata could not be copied, the file being as it was then, or
// when the tool complained of the source's. `tool` may be null: then the tool is started for this photograph
// alone. After an abort request of `control` (may be null) the answer and
// the file mean nothing.
[[nodiscard]] std::string CopyMetadata(const std::filesystem::path& source,
                                       const std::filesystem::path& workFile, FREE_IMAGE_FORMAT format,
                                       const base::RunControl* control, MetadataTool* tool = nullptr);

}  // namespace mirellon::imageio
