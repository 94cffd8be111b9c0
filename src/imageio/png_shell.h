// A PNG file without its pixels. The metadata tool works on such a shell: on a whole picture it spends
// seconds on checksums of compressed pixels that it does not change.
#pragma once

#include <filesystem>

namespace mirellon::imageio {

// Writes the shell of `picture` to `shell`, a new file: all that comes before the pixels, and the end. True =
// failed: `picture` is no PNG file whose end follows its pixels, or `shell` cannot be written.
[[nodiscard]] bool MakePngShell(const std::filesystem::path& picture, const std::filesystem::path& shell);

// Writes the shell with the picture's pixels in it to `joined`, a new file. True = failed: the shell is no
// longer whole or of another picture, or a file cannot be read or written.
[[nodiscard]] bool FillPngShell(const std::filesystem::path& picture, const std::filesystem::path& shell,
                                const std::filesystem::path& joined);

}  // namespace mirellon::imageio
