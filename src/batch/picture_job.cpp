#include "batch/picture_job.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/checked_file.h"
#include "base/stopwatch.h"
#include "batch/count_images.h"
#include "engine/card_jobs.h"
#include "engine/detail_pyramid.h"
#include "engine/whole_picture.h"
#include "imageio/load_image.h"
#include "profiles/slider_math.h"

namespace mirellon::batch {

namespace {

namespace fs = std::filesystem;
using imageio::LoadStatus;

constexpr int kLeastSide = 16;  // pixels
constexpr int kLeastDepth = 8;  // bits
constexpr int kLargestDepth = 16;

// What does not load is no photograph, one of a kind that is refused, or one that should have loaded.
EntryEnd EndOf(LoadStatus status, bool photograph) {
  const bool broken = status == LoadStatus::kDamaged || status == LoadStatus::kUnreadable ||
                      status == LoadStatus::kOutOfMemory;
  return broken && photograph ? EntryEnd::kFailed : EntryEnd::kSkipped;
}

bool IsPhotograph(LoadStatus status, const fs::path& file) {
  const bool known = status == LoadStatus::kLoaded || status == LoadStatus::kDamaged ||
                     status == LoadStatus::kUnsupportedKind || status == LoadStatus::kTooLarge ||
                     status == LoadStatus::kOutOfMemory;
  return known || IsNamedAsPhotograph(file.filename().native());
}

EntryReason ReasonOf(LoadStatus status) {
  switch (status) {
    case LoadStatus::kLoaded:
      return EntryReason::kNone;
    case LoadStatus::kNotAFile:
    case LoadStatus::kEmpty:
    case LoadStatus::kUnknownFormat:
      return EntryReason::kNoPhotograph;
    case LoadStatus::kUnsupportedKind:
      return EntryReason::kUnsupported;
    case LoadStatus::kTooLarge:
      return EntryReason::kTooLarge;
    case LoadStatus::kOutOfMemory:
      return EntryReason::kNoMemory;
    case LoadStatus::kCancelled:
    case LoadStatus::kMissing:
    case LoadStatus::kUnreadable:
    case LoadStatus::kDamaged:
      break;
  }
  return EntryReason::kUnreadable;
}

EntryReason ReasonOf(imageio::SaveStatus status) {
  const bool memory =
      status == imageio::SaveStatus::kOutOfMemory || status == imageio::SaveStatus::kNoPicture;
  return memory ? EntryReason::kNoMemory : EntryReason::kNotWritten;
}

bool IsLink(const fs::path& path) {
  std::error_code ignored;
  return fs::is_symlink(fs::symlink_status(path, ignored));
}

class PictureJob {
 public:
  PictureJob(BatchState& state, const fs::path& file, BatchObserver& observer, EntryReport& report)
      : state_(state), file_(file), observer_(observer), report_(report) {
    report_ = {};
    report_.input = file;
    folder_ = file.parent_path() / kResultFolder;
    target_ = folder_ / file.filename();
    saving_.jpegQuality = state.options.jpegQuality;
    saving_.pngCompression = state.options.pngCompression;
    saving_.metadata = state.options.metadata;
    saving_.applicationData = state.options.applicationData;
    saving_.control = &state.engine.control;
    saving_.tool = &state.tool;
  }

  JobEnd Run() {
    observer_.EntryStarted(file_);
    if (Load()) return End(false);
    if (TooSmall()) return End(true);
    if (!state_.options.dryRun) observer_.PictureLoaded(document_.source, document_.orientation);
    ChooseParameters();
    if (state_.options.dryRun) {
      report_.output = imageio::WrittenName(target_);
      WarnOfReplacing();
      NoteWritten();
      return End(true);
    }
    if (FolderRefused()) return WithoutFolder();
    if (Refused()) return End(true);
    Denoise();
    Sharpen();
    if (Aborted()) return JobEnd::kAborted;
    if (!document_.result.empty()) observer_.PictureDenoised(document_.result);
    if (MakeFolder()) return WithoutFolder();
    Save();
    if (report_.end == EntryEnd::kDone) {
      NoteWritten();
    } else if (Aborted()) {
      // Not even the empty folder stays.
      if (madeFolder_) fs::remove(folder_, error_);
      return JobEnd::kAborted;
    }
    return End(true);
  }

 private:
  [[nodiscard]] bool Aborted() const { return state_.engine.control.Aborted(); }

  JobEnd End(bool imageDone) {
    observer_.EntryEnded(report_);
    if (imageDone) observer_.ImageDone();
    return JobEnd::kReported;
  }

  bool Conclude(EntryEnd end, EntryReason reason, std::string cause) {
    report_.end = end;
    report_.reason = reason;
    report_.cause = std::move(cause);
    return true;
  }

  // True = not loaded.
  bool Load() {
    imageio::LoadReport loaded;
    fs::path path = file_;
    const bool failed = imageio::LoadImageFile(document_, path, /*quiet=*/true, &loaded);
    report_.milliseconds.load = watch_.Lap();
    report_.photograph = IsPhotograph(loaded.status, file_);
    if (failed) {
      return Conclude(EndOf(loaded.status, report_.photograph), ReasonOf(loaded.status),
                      std::move(loaded.cause));
    }
    const picture::PicBuf& source = document_.source;
    report_.width = source->width;
    report_.height = source->height;
    report_.components = source->components;
    report_.bits = source->bitsPerComponent;
    if (!loaded.warning.empty()) report_.warnings.push_back(std::move(loaded.warning));
    return false;
  }

  bool TooSmall() {
    const picture::PicBuf& source = document_.source;
    const int bits = source->bitsPerComponent;
    if (std::min(source->width, source->height) < kLeastSide) {
      return Conclude(EntryEnd::kSkipped, EntryReason::kTooSmall, "smaller than 16 pixels");
    }
    if (bits < kLeastDepth || bits > kLargestDepth) {
      return Conclude(EntryEnd::kSkipped, EntryReason::kUnsupported, "unsupported depth");
    }
    return false;
  }

  void ChooseParameters() {
    const imageio::ExifSummary& exif = document_.exif;
    report_.profile = profiles::SelectProfileForBatch(state_.store, {exif.make, exif.model, exif.iso});
    if (report_.profile.parameters != nullptr) {
      state_.parameters = *report_.profile.parameters;
      report_.camera = state_.store.cameras()[report_.profile.camera].name;
    }
    report_.parameters = profiles::RunParameters(state_.parameters);
  }

  // What speaks against the result is found before the work, not after it. True = something does.
  bool FolderRefused() {
    const int error = fs::exists(folder_, error_) ? 0 : base::CheckWritable(folder_);
    return error != 0 && CannotMakeFolder(error);
  }

  bool Refused() {
    report_.output = imageio::WrittenName(target_);
    const std::optional<FileIdentity> folder = IdentityOf(folder_);
    if (folder && state_.sources.contains(*folder)) {
      return Conclude(EntryEnd::kFailed, EntryReason::kNotWritten,
                      "'denoised' leads to a folder of photographs");
    }
    if (IsLink(report_.output)) {
      return Conclude(EntryEnd::kFailed, EntryReason::kNotWritten, "the result's name is taken by a link");
    }
    WarnOfReplacing();
    if (!folder) return false;  // it will be made
    // What is where a link leads need not be a result.
    saving_.overwrite = !IsLink(folder_);
    imageio::SaveReport checked = imageio::CheckTarget(document_.source, target_, file_, saving_);
    if (checked.status == imageio::SaveStatus::kTargetExists) {
      checked.cause = "'denoised' is a link, and nothing is replaced where it leads";
    }
    return checked.status != imageio::SaveStatus::kSaved &&
           Conclude(EntryEnd::kFailed, ReasonOf(checked.status), std::move(checked.cause));
  }

  // Where the result lies, by whatever names; nothing when it cannot be told.
  [[nodiscard]] std::optional<std::pair<FileIdentity, std::string>> ResultKey() const {
    const std::string name = report_.output.filename().string();
    if (const auto folder = IdentityOf(folder_)) return std::pair(*folder, name);
    const auto parent = IdentityOf(file_.has_parent_path() ? file_.parent_path() : fs::path("."));
    if (!parent) return std::nullopt;
    return std::pair(*parent, std::string(kResultFolder) + "/" + name);
  }

  void NoteWritten() {
    if (const auto key = ResultKey()) state_.written.insert(*key);
  }

  void WarnOfReplacing() {
    const auto key = ResultKey();
    if (key && state_.written.contains(*key)) {
      report_.warnings.emplace_back("the result replaces an earlier one of this run");
    } else if (report_.output != target_ &&
               fs::exists(file_.parent_path() / report_.output.filename(), error_)) {
      report_.warnings.emplace_back(
          "the result has the name of another photograph's, and one replaces the other");
    }
  }

  void Denoise() {
    engine::DenoiseRequest request;
    request.destination = &document_.result.record();
    request.source = &document_.source.record();
    request.Use(report_.parameters);
    request.quality = state_.options.quality;
    request.progressWindow = observer_.PictureProgress();
    request.useGpu = state_.options.useGpu;
    request.threads = state_.engine.processorCount;
    // It gets ready while the picture is denoised.
    if (state_.options.metadata) state_.tool.Prepare();
    watch_.Lap();
    (void)engine::DenoiseWholePicture(state_.engine, request, state_.options.fusion);
    report_.milliseconds.denoise = watch_.Lap();
    if (std::string note = engine::CardNote(state_.engine.cardRun); !note.empty()) {
      report_.warnings.push_back(std::move(note));
    }
    document_.source = picture::PicBuf();  // its memory is wanted now
  }

  // Grey is sharpened as grey: what colour would come to, component by component, and back.
  void Sharpen() {
    if (Aborted() || document_.result.empty()) return;
    const engine::DenoiseParameters& parameters = report_.parameters;
    const bool failed = engine::SharpenPicture(document_.result, parameters.m_dSharp1, parameters.m_dSharp2,
                                               parameters.m_dSharp3, state_.engine.processorCount);
    if (failed) report_.warnings.emplace_back("not sharpened: not enough memory");
    report_.milliseconds.sharpen = watch_.Lap();
  }

  // True = failed.
  bool MakeFolder() {
    if (document_.result.empty()) return false;
    madeFolder_ = fs::create_directory(folder_, error_);
    // Another run may have been faster.
    std::error_code ignored;
    if (madeFolder_ || fs::is_directory(folder_, ignored)) return false;
    return CannotMakeFolder(error_ ? error_.value() : EEXIST);
  }

  bool CannotMakeFolder(int error) {
    return Conclude(EntryEnd::kFailed, EntryReason::kNoFolder,
                    "the folder 'denoised' cannot be made: " + base::ErrorText(error));
  }

  JobEnd WithoutFolder() {
    if (!state_.options.endWithoutOutputFolder) return End(true);
    observer_.EntryEnded(report_);
    return JobEnd::kNoOutputFolder;
  }

  void Save() {
    imageio::SaveReport saved;
    fs::path path = target_;
    watch_.Lap();
    const bool failed = imageio::SaveImageAs(document_, path, saving_, &saved);
    report_.milliseconds.save = watch_.Lap();
    for (std::string& warning : saved.warnings) report_.warnings.push_back(std::move(warning));
    if (saved.status == imageio::SaveStatus::kNoPicture) saved.cause = "not enough memory";
    if (failed) (void)Conclude(EntryEnd::kFailed, ReasonOf(saved.status), std::move(saved.cause));
    if (!failed) report_.output = saved.written;
  }

  BatchState& state_;
  const fs::path& file_;
  BatchObserver& observer_;
  EntryReport& report_;
  fs::path folder_;
  fs::path target_;
  bool madeFolder_ = false;
  imageio::Document document_;
  imageio::SaveOptions saving_;
  base::Stopwatch watch_;
  std::error_code error_;
};

}  // namespace

JobEnd ProcessPicture(BatchState& state, const fs::path& file, BatchObserver& observer, EntryReport& report) {
  return PictureJob(state, file, observer, report).Run();
}

}  // namespace mirellon::batch
