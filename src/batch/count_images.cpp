#include "batch/count_images.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "batch/folder_walk.h"

namespace mirellon::batch {

namespace {

constexpr std::array<std::string_view, 5> kCounted = {".bmp", ".gif", ".jpg", ".tif", ".png"};

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

// From the last dot on, in lower case; empty without one.
std::string ExtensionOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {};
  std::string extension(name.substr(dot));
  std::transform(extension.begin(), extension.end(), extension.begin(), LowerCase);
  return extension;
}

bool IsCounted(const std::string& extension) {
  return std::find(kCounted.begin(), kCounted.end(), extension) != kCounted.end();
}

}  // namespace

bool HasCountedExtension(std::string_view name) {
  return IsCounted(ExtensionOf(name));
}

bool IsNamedAsPhotograph(std::string_view name) {
  const std::string extension = ExtensionOf(name);
  return IsCounted(extension) || extension == ".jpeg" || extension == ".tiff";
}

std::uint32_t CountImages(const std::filesystem::path& folder, const base::RunControl* control) {
  FolderWalk walk(folder, FolderWalk::Results::kInclude);
  std::uint32_t count = 0;
  while (control == nullptr || !control->Aborted()) {
    const std::optional<WalkItem> item = walk.Next();
    if (!item) break;
    if (item->kind == WalkItem::Kind::kFile && HasCountedExtension(item->path.filename().native())) ++count;
  }
  return count;
}

}  // namespace mirellon::batch
