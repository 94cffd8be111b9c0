// The per-user settings file.
#pragma once

#include <filesystem>

namespace mirellon::settings {

// Every access creates the folder first and reads or writes the file anew, so that several programs agree.
// `applicationData` is the folder of base::ApplicationDataFolder().

// Key "jpeg" of section "General": quality in percent, 85 when missing, as stored (not held to any range).
[[nodiscard]] int ReadJpegQuality(const std::filesystem::path& applicationData);
// True = failed. Unknown keys and sections survive; a file that already says so is not touched.
[[nodiscard]] bool WriteJpegQuality(const std::filesystem::path& applicationData, int quality);

}  // namespace mirellon::settings
