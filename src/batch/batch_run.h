// Denoising all photographs of a folder tree, or of a list.
#pragma once

#include <filesystem>
#include <vector>

#include "base/run_control.h"
#include "batch/batch_report.h"
#include "batch/picture_job.h"

namespace mirellon::batch {

// One run. Photographs are worked on one after another, each with all threads of the engine context, which
// together with the store must outlive the run and belong to it meanwhile. A photograph that cannot be worked
// on never changes what becomes of the next.
class BatchRun {
 public:
  BatchRun(engine::EngineContext& engine, const profiles::NoiseProfileStore& store, BatchOptions options,
           BatchObserver& observer);

  // Everything below the folder, in the order of FolderWalk, by content, whatever the names; results go into
  // "denoised" within each folder that has photographs. Files named "denoised" and folders of results are
  // passed over.
  [[nodiscard]] BatchSummary ProcessFolder(const std::filesystem::path& folder);

  // The files named, in the order given; those that lie in a folder named "denoised", or anywhere below one,
  // are skipped.
  [[nodiscard]] BatchSummary ProcessFiles(const std::vector<std::filesystem::path>& files);

  // Ends the run before its next entry; the picture in work is finished. From any thread. (An abort request
  // of the engine's run control ends it within the picture.)
  void RequestStop() noexcept { stop_.RequestAbort(); }

 private:
  [[nodiscard]] bool MustEnd();
  void Survey(const std::filesystem::path& root);
  void NoteSources(const std::vector<std::filesystem::path>& files);
  void Process(const std::filesystem::path& file);
  void Count(EntryEnd end);
  void ReportMissing(const std::filesystem::path& file, const std::string& cause);
  void LeaveOut(const std::filesystem::path& path, const std::string& cause, bool unreadable = false);

  BatchState state_;
  Identities results_;  // the folders of results of the tree in work
  BatchObserver& observer_;
  base::RunControl stop_;
  BatchSummary summary_;
  bool ended_ = false;
};

}  // namespace mirellon::batch
