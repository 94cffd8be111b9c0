#include "ui/model/batch_outcome.h"

#include <algorithm>
#include <system_error>

#include "batch/folder_walk.h"

namespace mirellon::ui {

namespace {

using batch::EntryEnd;
using batch::EntryReason;

bool IsFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

}  // namespace

bool IsTold(const batch::EntryReport& report) {
  return report.end != EntryEnd::kSkipped || report.photograph;
}

BatchEntry EntryOf(const batch::EntryReport& report) {
  BatchEntry entry{report.input, {}, report.end, report.reason, report.cause};
  if (report.end != EntryEnd::kDone) return entry;
  entry.output = report.output;
  for (const std::string& warning : report.warnings) {
    if (!entry.detail.empty()) entry.detail += "; ";
    entry.detail += warning;
  }
  return entry;
}

int StateText(EntryEnd end) {
  switch (end) {
    case EntryEnd::kDone:
      return 273;
    case EntryEnd::kSkipped:
      return 161;
    case EntryEnd::kFailed:
      break;
  }
  return 162;
}

int ReasonText(EntryReason reason) {
  switch (reason) {
    case EntryReason::kNone:
      return 0;
    case EntryReason::kNoPhotograph:
      return 282;
    case EntryReason::kUnsupported:
      return 283;
    case EntryReason::kUnreadable:
      return 284;
    case EntryReason::kTooSmall:
      return 285;
    case EntryReason::kTooLarge:
      return 286;
    case EntryReason::kNoFolder:
      return 287;
    case EntryReason::kNotWritten:
      return 288;
    case EntryReason::kLeftOut:
      return 289;
    case EntryReason::kNoMemory:
      break;
  }
  return 242;
}

std::filesystem::path FolderToShow(const BatchWork& work, const BatchOutcome& outcome) {
  if (const std::filesystem::path root = RootOf(work); !root.empty()) {
    std::filesystem::path results = root / batch::kResultFolder;
    if (IsFolder(results)) return results;
  }
  const auto done = std::find_if(outcome.entries.begin(), outcome.entries.end(),
                                 [](const BatchEntry& entry) { return entry.end == EntryEnd::kDone; });
  if (done != outcome.entries.end()) return FolderToShow(*done);
  if (work.paths.empty()) return {};
  return IsFolder(work.paths.front()) ? work.paths.front() : work.paths.front().parent_path();
}

std::filesystem::path FolderToShow(const BatchEntry& entry) {
  if (!entry.output.empty()) return entry.output.parent_path();
  return IsFolder(entry.input) ? entry.input : entry.input.parent_path();
}

std::filesystem::path RootOf(const BatchWork& work) {
  const bool one = work.paths.size() == 1 && IsFolder(work.paths.front());
  return one ? work.paths.front() : std::filesystem::path();
}

std::filesystem::path NameInReport(const std::filesystem::path& root, const std::filesystem::path& path) {
  if (root.empty()) return path;
  std::filesystem::path name = path.lexically_relative(root);
  return name.empty() || *name.begin() == ".." || name == "." ? path : name;
}

}  // namespace mirellon::ui
