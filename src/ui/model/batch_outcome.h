// What a batch run has made, as its report tells it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "batch/batch_report.h"

namespace mirellon::ui {

// What a batch runs on: one folder with all below it, or what was chosen one by one.
struct BatchWork {
  std::vector<std::filesystem::path> paths;  // files, and folders with all below them
};

// A photograph, or something that failed. Texts as in batch::EntryReport.
struct BatchEntry {
  std::filesystem::path input;
  std::filesystem::path output;  // kDone alone
  batch::EntryEnd end = batch::EntryEnd::kDone;
  batch::EntryReason reason = batch::EntryReason::kNone;
  std::string detail;  // why, or what warnings there were
};

struct BatchOutcome {
  batch::BatchSummary summary;
  std::vector<BatchEntry> entries;  // in the order of the run
};

// Whether a report tells of it: everything but what was no photograph in the first place.
[[nodiscard]] bool IsTold(const batch::EntryReport& report);
[[nodiscard]] BatchEntry EntryOf(const batch::EntryReport& report);

// Numbers of the text table; 0: there is none.
[[nodiscard]] int StateText(batch::EntryEnd end);
[[nodiscard]] int ReasonText(batch::EntryReason reason);

// The folder that "Open Folder" shows: where the results of that work are, or as near to it as there is
// something.
[[nodiscard]] std::filesystem::path FolderToShow(const BatchWork& work, const BatchOutcome& outcome);
// Where the results of one entry are, or where it is itself.
[[nodiscard]] std::filesystem::path FolderToShow(const BatchEntry& entry);

// The folder that everything lies below, if that is what the work is; else empty.
[[nodiscard]] std::filesystem::path RootOf(const BatchWork& work);
// The name that tells entries apart: below the root where there is one, else whole.
[[nodiscard]] std::filesystem::path NameInReport(const std::filesystem::path& root,
                                                 const std::filesystem::path& path);

}  // namespace mirellon::ui
