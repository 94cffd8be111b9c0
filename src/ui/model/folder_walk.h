// The photographs beside a photograph.
#pragma once

#include <filesystem>

namespace mirellon::ui {

enum class Step { kPrevious, kNext };

// The neighbour of `current` among its folder's image files (by batch::HasCountedExtension) in the order of
// their names; empty at the ends and where the folder cannot be read. `current` itself need not exist any
// more.
[[nodiscard]] std::filesystem::path Neighbour(const std::filesystem::path& current, Step step);

}  // namespace mirellon::ui
