#include "ui/model/folder_walk.h"

#include <string>
#include <system_error>

#include "batch/count_images.h"

namespace mirellon::ui {

std::filesystem::path Neighbour(const std::filesystem::path& current, Step step) {
  const std::filesystem::path folder = current.has_parent_path() ? current.parent_path() : ".";
  const std::string name = current.filename().native();
  std::string best;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string other = entry->path().filename().native();
    std::error_code unknown;
    if (!batch::HasCountedExtension(other) || !entry->is_regular_file(unknown)) continue;
    const bool candidate = step == Step::kNext ? other > name : other < name;
    const bool nearer = best.empty() || (step == Step::kNext ? other < best : other > best);
    if (candidate && nearer) best = other;
  }
  if (best.empty()) return {};
  return current.has_parent_path() ? current.parent_path() / best : std::filesystem::path(best);
}

}  // namespace mirellon::ui
