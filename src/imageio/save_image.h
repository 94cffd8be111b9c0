// From a picture to a file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/run_control.h"
#include "imageio/document.h"
#include "imageio/metadata_tool.h"

struct FIBITMAP;

namespace mirellon::imageio {

enum class SaveStatus {
  kSaved,
  kNoPicture,
  kCancelled,         // no path given and none chosen
  kAborted,           // the run control's abort flag; nothing was left behind
  kTargetExists,      // and options.overwrite is false
  kTargetIsSource,    // the target is the source itself, by whatever name or link
  kNotWritable,       // folder missing or read-only, target a folder, disk full, write error ...
  kUnsupportedDepth,  // the format cannot hold this picture (16 bits in a JPEG, 70000 columns in a JPEG ...)
  kOutOfMemory,
};

struct SaveOptions {
  std::optional<int> jpegQuality = {};     // percent; none: the quality stored in the settings file
  std::optional<int> pngCompression = {};  // 1 (quick) to 9 (small); none: the library's own, about 6
  bool metadata = true;                    // copy EXIF and the ICC profile from document.currentPath
  bool overwrite = true;
  // Where the settings live (base::ApplicationDataFolder()); empty: none are read (quality 85) or written.
  std::filesystem::path applicationData = {};
  const base::RunControl* control = nullptr;  // null: cannot be aborted
  MetadataTool* tool = nullptr;               // null: the metadata's tool is started for this save alone
};

// The one warning that is not about metadata.
inline constexpr const char* kQualityNotStored = "the JPEG quality could not be stored in the settings file";

// What happened, for whoever composes a message; `cause` and `warnings` are English, without the target's
// name and without a full stop.
struct SaveReport {
  SaveStatus status = SaveStatus::kSaved;
  std::string cause;
  std::filesystem::path written;  // the file's final name; it differs from the target for formats not written
  std::vector<std::string> warnings;  // metadata that could not be copied, and the like
};

// The name that a target is really written under: known and writable formats keep theirs, all others (GIF
// among them) become TIFF: the last three characters replaced by "tif" when the name is longer than 5
// characters and its fourth from the end is ".", else ".tif" appended.
[[nodiscard]] std::filesystem::path WrittenName(const std::filesystem::path& target);

// Everything about a save that can be told before the work is done: target existing, being the source, folder
// missing or read-only, depth not held by the format. status kSaved = nothing speaks against it.
[[nodiscard]] SaveReport CheckTarget(const picture::SBxPicBuf& picture, const std::filesystem::path& target,
                                     const std::filesystem::path& source, const SaveOptions& options);

// Saves document.result to `path`; an empty path asks the document's owner and receives the choice. Inverted:
// false = written, true = not. The file appears under its name only when complete, metadata included. After a
// successful save the JPEG quality in force is written back to the settings file, unless it came from
// options.jpegQuality. `report` may be null.
[[nodiscard]] bool SaveImageAs(Document& document, std::filesystem::path& path, const SaveOptions& options,
                               SaveReport* report = nullptr);

// Encodes and writes one file, metadata copied from `source` when options.metadata is set and source is not
// empty. Inverted: true = failed.
[[nodiscard]] bool WriteImageFile(const picture::SBxPicBuf& picture, const std::filesystem::path& target,
                                  const std::filesystem::path& source, int jpegQuality,
                                  const SaveOptions& options, SaveReport* report = nullptr);

// A bitmap of the picture, which the caller unloads with FreeImage_Unload; null when it cannot be allocated.
// A picture with neither 1 nor 3 components gives a bitmap whose pixels are left as allocated.
[[nodiscard]] FIBITMAP* CreateBitmap(const picture::SBxPicBuf& picture);

}  // namespace mirellon::imageio
