#include "batch/batch_run.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

#include "base/file_descriptor.h"
#include "batch/count_images.h"

namespace mirellon::batch {

namespace {

// By the names that lead to it from the root on.
bool LiesAmongResults(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(file, error);
  const std::filesystem::path folder = (error ? file : absolute).lexically_normal().parent_path();
  return std::find(folder.begin(), folder.end(), kResultFolder) != folder.end();
}

}  // namespace

BatchRun::BatchRun(engine::EngineContext& engine, const profiles::NoiseProfileStore& store,
                   BatchOptions options, BatchObserver& observer)
    : state_{.engine = engine, .store = store, .options = std::move(options)}, observer_(observer) {}

// The folders that photographs are taken from, and those that only hold results, found before anything is
// written: a link may lead from one to the other.
void BatchRun::Survey(const std::filesystem::path& root) {
  FolderWalk walk(root, FolderWalk::Results::kLeaveOut);
  while (!MustEnd() && walk.Next()) {
  }
  state_.sources = walk.folders();
  results_ = walk.resultFolders();
  const std::optional<FileIdentity> chosen = IdentityOf(root);
  for (const FileIdentity& result : results_) {
    if (result != chosen) state_.sources.erase(result);
  }
}

BatchSummary BatchRun::ProcessFolder(const std::filesystem::path& folder) {
  Survey(folder);
  FolderWalk walk(folder, FolderWalk::Results::kLeaveOut, results_);
  while (!MustEnd()) {
    const std::optional<WalkItem> item = walk.Next();
    if (!item) break;
    if (item->kind == WalkItem::Kind::kFile) {
      Process(item->path);
    } else {
      LeaveOut(item->path, item->cause, item->unreadable);
    }
  }
  return summary_;
}

void BatchRun::NoteSources(const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    if (MustEnd()) return;
    const auto folder = IdentityOf(file.has_parent_path() ? file.parent_path() : std::filesystem::path("."));
    if (folder && !LiesAmongResults(file)) state_.sources.insert(*folder);
  }
}

BatchSummary BatchRun::ProcessFiles(const std::vector<std::filesystem::path>& files) {
  if (MustEnd()) return summary_;  // even where there is nothing to do
  NoteSources(files);
  for (const std::filesystem::path& file : files) {
    if (MustEnd()) break;
    if (LiesAmongResults(file)) {
      LeaveOut(file, "it lies in a folder of results");
    } else if (std::error_code error; !std::filesystem::exists(file, error)) {
      // Somebody named it, whatever its name looks like; a file that goes later is like one that a walk
      // misses.
      ReportMissing(file, error ? base::ErrorText(error.value()) : "no such file");
    } else {
      Process(file);
    }
  }
  return summary_;
}

bool BatchRun::MustEnd() {
  const bool asked = stop_.Aborted() || state_.engine.control.Aborted();
  if (asked && !ended_) summary_.end = BatchSummary::End::kStopped;
  return asked || ended_;
}

void BatchRun::Process(const std::filesystem::path& file) {
  EntryReport report;
  JobEnd end = JobEnd::kReported;
  // Our own functions do not throw; what ends up here is a container that got no memory.
  try {
    end = ProcessPicture(state_, file, observer_, report);
  } catch (const std::bad_alloc&) {
    report.end = EntryEnd::kFailed;
    report.reason = EntryReason::kNoMemory;
    report.cause = "not enough memory";
    observer_.EntryEnded(report);
  }
  if (end == JobEnd::kAborted) {
    summary_.end = BatchSummary::End::kAborted;
    ended_ = true;
    return;
  }
  Count(report.end);
  if (end == JobEnd::kNoOutputFolder) {
    summary_.end = BatchSummary::End::kNoOutputFolder;
    ended_ = true;
  }
}

void BatchRun::ReportMissing(const std::filesystem::path& file, const std::string& cause) {
  EntryReport report;
  report.input = file;
  report.end = EntryEnd::kFailed;
  report.reason = EntryReason::kUnreadable;
  report.cause = cause;
  report.photograph = true;
  Count(report.end);
  observer_.EntryEnded(report);
}

void BatchRun::LeaveOut(const std::filesystem::path& path, const std::string& cause, bool unreadable) {
  EntryReport report;
  report.input = path;
  report.end = unreadable ? EntryEnd::kFailed : EntryEnd::kSkipped;
  report.reason = unreadable ? EntryReason::kUnreadable : EntryReason::kLeftOut;
  report.cause = cause;
  report.photograph = IsNamedAsPhotograph(path.filename().native());
  Count(report.end);
  observer_.EntryEnded(report);
}

void BatchRun::Count(EntryEnd end) {
  switch (end) {
    case EntryEnd::kDone:
      ++summary_.done;
      break;
    case EntryEnd::kSkipped:
      ++summary_.skipped;
      break;
    case EntryEnd::kFailed:
      ++summary_.failed;
      break;
  }
}

}  // namespace mirellon::batch
