#include "batch/batch_run.h"

#include <utility>

#include "batch/count_images.h"

namespace mirellon::batch {

namespace {

// The folders that photographs are taken from, and those that only hold results, found before anything is
// written: a link may lead from one to the other.
struct Folders {
  Identities sources;
  Identities results;
};

Folders Survey(const std::filesystem::path& root, const base::RunControl& control) {
  FolderWalk walk(root, FolderWalk::Results::kLeaveOut);
  while (!control.Aborted() && walk.Next()) {
  }
  Folders folders{walk.folders(), walk.resultFolders()};
  const std::optional<FileIdentity> chosen = IdentityOf(root);
  for (const FileIdentity& result : folders.results) {
    if (result != chosen) folders.sources.erase(result);
  }
  return folders;
}

bool LiesAmongResults(const std::filesystem::path& file) {
  return file.parent_path().filename() == kResultFolder;
}

}  // namespace

BatchRun::BatchRun(engine::EngineContext& engine, const profiles::NoiseProfileStore& store,
                   BatchOptions options, BatchObserver& observer)
    : state_{.engine = engine, .store = store, .options = std::move(options)}, observer_(observer) {}

BatchSummary BatchRun::ProcessFolder(const std::filesystem::path& folder) {
  Folders folders = Survey(folder, state_.engine.control);
  state_.sources = std::move(folders.sources);
  FolderWalk walk(folder, FolderWalk::Results::kLeaveOut, std::move(folders.results));
  while (!MustEnd()) {
    const std::optional<WalkItem> item = walk.Next();
    if (!item) break;
    switch (item->kind) {
      case WalkItem::Kind::kFile:
        Process(item->path);
        break;
      case WalkItem::Kind::kFolder:
        Skip(item->path, item->cause, item->unreadable ? EntryEnd::kFailed : EntryEnd::kSkipped);
        break;
      case WalkItem::Kind::kOther:
      case WalkItem::Kind::kGone:
        Skip(item->path, item->cause);
        break;
    }
  }
  return summary_;
}

BatchSummary BatchRun::ProcessFiles(const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    const auto folder = IdentityOf(file.has_parent_path() ? file.parent_path() : std::filesystem::path("."));
    if (folder && !LiesAmongResults(file)) state_.sources.insert(*folder);
  }
  for (const std::filesystem::path& file : files) {
    if (MustEnd()) break;
    if (LiesAmongResults(file)) {
      Skip(file, "it lies in a folder of results");
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
  const JobEnd end = ProcessPicture(state_, file, observer_, report);
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

void BatchRun::Skip(const std::filesystem::path& path, const std::string& cause, EntryEnd end) {
  EntryReport report;
  report.input = path;
  report.end = end;
  report.cause = cause;
  report.photograph = HasCountedExtension(path.filename().native());
  Count(end);
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
