// What a batch run tells while it runs, and at its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/progress_sink.h"
#include "engine/parameters.h"
#include "picture/pic_buf.h"
#include "profiles/profile_select.h"

namespace mirellon::batch {

enum class EntryEnd {
  kDone,     // written (in a dry run: it would be worked on)
  kSkipped,  // no photograph, or none that can be worked on
  kFailed,   // a photograph that should have a result now, and has none
};

// Why an entry has no result, for whoever has words of their own for it; `cause` tells it closer.
enum class EntryReason {
  kNone,          // it has one
  kNoPhotograph,  // no picture file, or no file at all
  kUnsupported,   // a kind or depth of picture that is refused
  kTooLarge,
  kTooSmall,
  kUnreadable,  // damaged, missing, or not to be read
  kNoMemory,
  kNoFolder,    // the folder for the results could not be made
  kNotWritten,  // the result was refused its place, or writing it failed
  kLeftOut,     // met before, or among results
};

// One file, or one folder that was left out. Texts are English, without names and without a full stop.
struct EntryReport {
  std::filesystem::path input;
  std::filesystem::path output;  // kDone: the result
  EntryEnd end = EntryEnd::kDone;
  EntryReason reason = EntryReason::kNone;
  std::string cause;        // kSkipped, kFailed: why
  bool photograph = false;  // by its content, or by its name where the content cannot tell
  std::vector<std::string> warnings;
  int width = 0;  // pixels; this and the following are known once the photograph was loaded
  int height = 0;
  int components = 0;
  int bits = 0;
  profiles::ProfileChoice profile;       // `parameters` of it null: those of the file before were used
  std::wstring camera;                   // the name of the profile's camera
  engine::DenoiseParameters parameters;  // as the engine got them
  struct Milliseconds {
    double load = 0.0;
    double denoise = 0.0;
    double sharpen = 0.0;
    double save = 0.0;
  } milliseconds;
};

// Hears of a run. All calls come from the thread that runs, in the order of the walk; none overlap.
class BatchObserver {
 public:
  BatchObserver() = default;
  BatchObserver(const BatchObserver&) = delete;
  BatchObserver& operator=(const BatchObserver&) = delete;
  virtual ~BatchObserver() = default;

  virtual void EntryStarted(const std::filesystem::path& file) = 0;
  // Follows every EntryStarted, except of a picture in work that an abort request stopped. Folders and other
  // entries that were left out end without having started.
  virtual void EntryEnded(const EntryReport& report) = 0;
  // One image more for the progress bar: comes with every photograph that was loaded, small ones included.
  virtual void ImageDone() = 0;
  // The photograph as it was loaded, with EXIF's orientation, and what was made of it, before it is saved;
  // lent for the call. The work waits meanwhile. Not in a dry run, nor of what was stopped.
  virtual void PictureLoaded(const picture::SBxPicBuf& /*source*/, int /*orientation*/) {}
  virtual void PictureDenoised(const picture::SBxPicBuf& /*result*/) {}
  // Where the picture in work shows its progress; null: nowhere. Asked once for each.
  virtual base::ProgressSink* PictureProgress() = 0;
};

struct BatchSummary {
  enum class End {
    kComplete,
    kStopped,         // on request, before an entry
    kAborted,         // on request, within a picture, which has no result
    kNoOutputFolder,  // "denoised" could not be made somewhere, and that ends the run
  };
  End end = End::kComplete;
  std::size_t done = 0;
  std::size_t skipped = 0;
  std::size_t failed = 0;
};

}  // namespace mirellon::batch
