// A list of files, as other programs print it.
#pragma once

#include <filesystem>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace mirellon::cli {

// One name a line or, where the text holds a NUL, one before each NUL ("find -print0"). Empty ones do not
// count; nothing else is taken off a name.
[[nodiscard]] std::vector<std::filesystem::path> SplitFileList(std::string_view text);

// Reads the list; "-" is `standardInput`. Empty = done, else why not.
[[nodiscard]] std::string ReadFileList(const std::filesystem::path& list, std::istream& standardInput,
                                       std::vector<std::filesystem::path>& files);

}  // namespace mirellon::cli
