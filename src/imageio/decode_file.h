// The one place where files of unknown origin meet the decoding library.
#pragma once

#include <filesystem>

#include "imageio/load_image.h"
#include "picture/pic_buf.h"

namespace mirellon::imageio {

// Decodes a file, whatever its name is made of. The format is that of the file's signature, or else of its
// name; size and kind are judged from the header, before anything is allocated. Nothing of the library passes
// through here, so decoding may move into a process of its own without a caller noticing.
//
// An empty picture = failed; `report` tells why, and carries format and warning in any case. Thread-safe.
[[nodiscard]] picture::PicBuf DecodeFile(const std::filesystem::path& file, LoadReport& report);

}  // namespace mirellon::imageio
