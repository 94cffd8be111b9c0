// The photograph in work.
#pragma once

#include <filesystem>
#include <string>

#include "base/window_services.h"
#include "imageio/exif_summary.h"
#include "picture/pic_buf.h"

namespace mirellon::imageio {

struct Document {
  base::WindowServices* owner = nullptr;  // dialogs and messages; null: none are shown
  picture::PicBuf source;                 // as loaded
  picture::PicBuf result;                 // what is saved
  ExifSummary exif;
  int orientation = 1;                // PhotoMetadata's; the pictures are as stored, not turned
  std::string profile;                // PhotoMetadata's; it belongs to the samples of both pictures
  bool profileRefused = false;        // likewise
  std::filesystem::path currentPath;  // the file loaded last: source of output names and of metadata
};

}  // namespace mirellon::imageio
