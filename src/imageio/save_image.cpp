#include "imageio/save_image.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <utility>

#include <FreeImage.h>
#include <sys/stat.h>

#include "base/checked_file.h"
#include "imageio/encode_picture.h"
#include "imageio/library_support.h"
#include "imageio/metadata_transfer.h"
#include "imageio/save_format.h"
#include "imageio/save_names.h"
#include "settings/app_settings.h"

namespace mirellon::imageio {

namespace {

using base::CheckedFile;
using picture::SBxPicBuf;

constexpr const wchar_t* kSaveTitle = L"Save As...";
constexpr int kDefaultQuality = 85;

bool Refuse(SaveReport& report, SaveStatus status, std::string cause) {
  report.status = status;
  report.cause = std::move(cause);
  return true;
}

bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  struct stat first {};
  struct stat second {};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

bool Exists(const std::filesystem::path& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

std::string CauseOfTargetError(int error) {
  switch (error) {
    case EISDIR:
      return "a folder of that name exists";
    case EINVAL:
      return "a device, pipe or socket has that name";
    case ENOENT:
      return "the folder does not exist";
    default:
      return base::ErrorText(error);
  }
}

// The file's name while it is made: its format's first extension, nothing of the user's.
std::string WorkName(FREE_IMAGE_FORMAT format) {
  const std::string extensions = FreeImage_GetFIFExtensionList(format);
  return "picture." + extensions.substr(0, extensions.find(','));
}

bool ReportWriteFault(const CheckedFile& file, SaveReport& report, const std::string& encoderCause = {}) {
  report.warnings.clear();  // about a file that is not there
  if (file.error() == ECANCELED) return Refuse(report, SaveStatus::kAborted, "stopped");
  if (file.error() == EEXIST) return Refuse(report, SaveStatus::kTargetExists, "the file exists already");
  return Refuse(report, SaveStatus::kNotWritable, file.error() != 0 ? file.cause() : encoderCause);
}

bool IsAborted(const SaveOptions& options) {
  return options.control != nullptr && options.control->Aborted();
}

void AddMetadata(const std::filesystem::path& target, const std::filesystem::path& source,
                 const CheckedFile& file, FREE_IMAGE_FORMAT format, const SaveOptions& options,
                 SaveReport& report) {
  if (!options.metadata || source.empty()) return;
  std::string warning;
  if (report.written != target) {
    warning = "the metadata was not copied: the picture is a TIFF file under another name than the one given";
  } else {
    warning = CopyMetadata(source, file.workPath(), format, options.control, options.tool);
  }
  if (!warning.empty()) report.warnings.push_back(std::move(warning));
}

// The checks are behind us: encode, add the metadata, put in place. True = failed, and reported.
bool WriteChecked(const SBxPicBuf& picture, const std::filesystem::path& target,
                  const std::filesystem::path& source, int jpegQuality, const SaveOptions& options,
                  SaveReport& report) {
  const FREE_IMAGE_FORMAT format = FormatOfName(report.written);
  Bitmap bitmap(CreateBitmap(picture));
  if (!bitmap) return Refuse(report, SaveStatus::kOutOfMemory, "not enough memory to encode the picture");
  CheckedFile file;
  if (file.Open(report.written, WorkName(format), options.control)) return ReportWriteFault(file, report);
  std::string cause;
  if (EncodePicture(bitmap.get(), format, SaveFlags(format, jpegQuality, options.pngCompression), file,
                    cause)) {
    return ReportWriteFault(file, report, cause);
  }
  bitmap.reset();
  if (IsAborted(options)) return Refuse(report, SaveStatus::kAborted, "stopped");
  AddMetadata(target, source, file, format, options, report);
  const auto existing = options.overwrite ? CheckedFile::Existing::kReplace : CheckedFile::Existing::kRefuse;
  return file.Commit(existing) && ReportWriteFault(file, report);
}

// True = nobody there to ask, or cancelled.
bool AskForPath(const Document& document, std::filesystem::path& path) {
  if (document.owner == nullptr) return true;
  const int bits = document.result->bitsPerComponent;
  const SaveProposal proposal = ProposeSave(document.currentPath, bits);
  const auto chosen = document.owner->AskSavePath(kSaveTitle, proposal.path);
  if (!chosen || chosen->empty()) return true;
  path = CompleteName(*chosen, bits, proposal.filterIndex);
  return false;
}

// The quality in force, and whether it is the settings file's to keep.
struct Quality {
  int percent;
  bool stored;
};

Quality QualityInForce(const SaveOptions& options) {
  if (options.jpegQuality) return {*options.jpegQuality, false};
  if (options.applicationData.empty()) return {kDefaultQuality, false};
  return {settings::ReadJpegQuality(options.applicationData), true};
}

}  // namespace

SaveReport CheckTarget(const SBxPicBuf& picture, const std::filesystem::path& target,
                       const std::filesystem::path& source, const SaveOptions& options) {
  SaveReport report;
  if (picture.samples == nullptr) {
    (void)Refuse(report, SaveStatus::kNoPicture, "there is no picture to save");
    return report;
  }
  if (target.empty()) {
    (void)Refuse(report, SaveStatus::kNotWritable, "no file name was given");
    return report;
  }
  report.written = WrittenName(target);
  if (!source.empty() && IsSameFile(report.written, source)) {
    (void)Refuse(report, SaveStatus::kTargetIsSource, "it is the photograph itself");
    return report;
  }
  const int error = base::CheckWritable(report.written);
  const bool isFile = error != EISDIR && error != EINVAL && Exists(report.written);
  if (isFile && !options.overwrite) {
    (void)Refuse(report, SaveStatus::kTargetExists, "the file exists already");
    return report;
  }
  if (error != 0) {
    (void)Refuse(report, SaveStatus::kNotWritable, CauseOfTargetError(error));
    return report;
  }
  std::string refusal = FormatRefusal(FormatOfName(report.written), picture);
  if (!refusal.empty()) (void)Refuse(report, SaveStatus::kUnsupportedDepth, std::move(refusal));
  return report;
}

bool WriteImageFile(const SBxPicBuf& picture, const std::filesystem::path& target,
                    const std::filesystem::path& source, int jpegQuality, const SaveOptions& options,
                    SaveReport* report) {
  PrepareLibraries();
  SaveReport told = CheckTarget(picture, target, source, options);
  bool failed = told.status != SaveStatus::kSaved;
  if (!failed) failed = WriteChecked(picture, target, source, jpegQuality, options, told);
  if (report != nullptr) *report = std::move(told);
  return failed;
}

bool SaveImageAs(Document& document, std::filesystem::path& path, const SaveOptions& options,
                 SaveReport* report) {
  SaveReport own;
  SaveReport& told = report != nullptr ? *report : own;
  told = {};
  if (document.result.empty()) return Refuse(told, SaveStatus::kNoPicture, "there is no picture to save");
  const Quality quality = QualityInForce(options);
  std::filesystem::path chosen = path;
  if (chosen.empty() && AskForPath(document, chosen)) {
    return Refuse(told, SaveStatus::kCancelled, "no file was chosen");
  }
  if (WriteImageFile(document.result, chosen, document.currentPath, quality.percent, options, &told)) {
    return true;
  }
  path = chosen;
  if (quality.stored && settings::WriteJpegQuality(options.applicationData, quality.percent)) {
    told.warnings.emplace_back(kQualityNotStored);
  }
  return false;
}

}  // namespace mirellon::imageio
