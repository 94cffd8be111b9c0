// From a file to a picture.
#pragma once

#include <filesystem>
#include <string>

#include "imageio/document.h"

struct FIBITMAP;

namespace mirellon::imageio {

enum class LoadStatus {
  kLoaded,
  kCancelled,        // no path given and none chosen
  kMissing,          // no such file
  kNotAFile,         // a folder, device, pipe or socket
  kUnreadable,       // permission or read error
  kEmpty,            // zero bytes
  kUnknownFormat,    // neither signature nor name tell a format that can be read
  kDamaged,          // the format is known, decoding failed
  kUnsupportedKind,  // palette, CMYK, alpha, floating point, 1 or 4 bits
  kTooLarge,         // more samples than a picture can hold
  kOutOfMemory,
};

// What happened, for whoever composes a message. `cause` is English, without the file's name and without a
// full stop ("a palette picture; only grey and colour with 8 or 16 bits are supported").
struct LoadReport {
  LoadStatus status = LoadStatus::kLoaded;
  std::string cause;
  std::string format;   // "JPEG", "PNG", "TIFF", "BMP", "GIF", ... once known
  std::string warning;  // the picture was loaded, but with a complaint (a JPEG that ends too early)
};

// Loads `path` into document.source and what describes it, and sets document.currentPath. An empty path asks
// the document's owner and receives the choice. Inverted: false = loaded, true = not loaded, and then the
// document is as it was. Unless `quiet`, a failure (not a cancel) shows "Image format not supported!".
// `report` may be null.
[[nodiscard]] bool LoadImageFile(Document& document, std::filesystem::path& path, bool quiet,
                                 LoadReport* report = nullptr);

// A decoded bitmap as a picture, blue first, top row first. Empty when the kind is not accepted (8- and
// 16-bit grey and colour are) or memory is refused; `report`, which may be null, tells which. The bitmap
// stays the caller's; a min-is-white one is inverted in place first.
[[nodiscard]] picture::PicBuf ConvertBitmap(FIBITMAP* bitmap, LoadReport* report = nullptr);

}  // namespace mirellon::imageio
