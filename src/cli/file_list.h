// A list of files, as other programs print it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/run_control.h"

namespace mirellon::cli {

// One name a line or, where the text holds a NUL, one before each NUL ("find -print0"). Empty ones do not
// count; nothing else is taken off a name.
[[nodiscard]] std::vector<std::filesystem::path> SplitFileList(std::string_view text);

// Ten million names, as names go.
inline constexpr std::size_t kLargestList = std::size_t{1} << 30U;  // bytes

// Reads the list to its end; "-" is the descriptor `standardInput`. It may be a pipe on which nothing comes
// for long: an abort request ends the waiting, and what is read then means nothing. Empty = done, else why
// not.
[[nodiscard]] std::string ReadFileList(const std::filesystem::path& list, int standardInput,
                                       const base::RunControl& control,
                                       std::vector<std::filesystem::path>& files,
                                       std::size_t limit = kLargestList);

}  // namespace mirellon::cli
