// Keeping what is about to be replaced.
#pragma once

#include <filesystem>

namespace mirellon::base {

// Gives a file a second name beside it, the first free one of "NAME.bak", "NAME.bak2", "NAME.bak3" ...: the
// same file where the file system knows links, else a copy, so that replacing NAME through CheckedFile leaves
// the old content under that name. Of a link, what it leads to is kept, where it lies. 0, or the error number
// (ENOENT: no such file; EEXIST: a thousand kept already).
[[nodiscard]] int KeepCopy(const std::filesystem::path& file, std::filesystem::path& kept);

}  // namespace mirellon::base
