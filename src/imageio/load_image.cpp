#include "imageio/load_image.h"

#include <optional>
#include <utility>

#include "imageio/decode_file.h"
#include "imageio/photo_metadata.h"

namespace mirellon::imageio {

namespace {

constexpr const wchar_t* kOpenTitle = L"Open...";
constexpr const wchar_t* kRefusedText = L"Image format not supported!";

// True = nobody there to ask, or cancelled.
bool AskForPath(base::WindowServices* owner, std::filesystem::path& path) {
  if (owner == nullptr) return true;
  const std::optional<std::filesystem::path> chosen = owner->AskOpenPath(kOpenTitle);
  if (!chosen || chosen->empty()) return true;
  path = *chosen;
  return false;
}

}  // namespace

bool LoadImageFile(Document& document, std::filesystem::path& path, bool quiet, LoadReport* report) {
  LoadReport own;
  LoadReport& told = report != nullptr ? *report : own;
  told = {};
  if (path.empty() && AskForPath(document.owner, path)) {
    told.status = LoadStatus::kCancelled;
    told.cause = "no file was chosen";
    return true;
  }
  picture::PicBuf picture = DecodeFile(path, told);
  if (picture.empty()) {
    if (!quiet && document.owner != nullptr) {
      document.owner->ShowMessage(kRefusedText, L"", base::MessageKind::kPlain);
    }
    return true;
  }
  document.source = std::move(picture);
  PhotoMetadata metadata = ReadPhotoMetadata(path);
  document.exif = std::move(metadata.exif);
  document.orientation = metadata.orientation;
  document.profile = std::move(metadata.profile);
  document.profileRefused = metadata.profileRefused;
  document.currentPath = path;
  return false;
}

}  // namespace mirellon::imageio
