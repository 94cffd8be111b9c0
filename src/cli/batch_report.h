// What a batch run tells its user.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "batch/batch_report.h"
#include "cli/batch_arguments.h"
#include "cli/shell.h"
#include "cli/terminal_progress.h"

namespace mirellon::cli {

// What all lines of a run have in common.
struct BatchFacts {
  std::uint32_t quality = engine::kQualityMedium;
  std::string backend = "cpu";  // what does the work: "cpu", "gpu" or "fusion"
  std::string simd;             // the instruction set in use
  std::uint32_t threads = 1;
};

// Prints as the run goes: with --json a line for each file on standard output; failures, warnings and what
// was skipped on standard error, each kind of warning once with a count at the end, and the progress.
class BatchReporter : public batch::BatchObserver {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  // `total` is the number of images to expect.
  BatchReporter(const BatchArguments& arguments, BatchFacts facts, std::uint32_t total, Shell& shell,
                Clock clock = std::chrono::steady_clock::now);

  void EntryStarted(const std::filesystem::path& file) override;
  void EntryEnded(const batch::EntryReport& report) override;
  void ImageDone() override;
  base::ProgressSink* PictureProgress() override;

  // The last lines: repeated warnings, and what became of the whole.
  void Summarise(const batch::BatchSummary& summary);

 private:
  [[nodiscard]] std::uint32_t Elapsed() const;  // seconds
  [[nodiscard]] std::string ProgressLabel() const;
  void PrintJson(const batch::EntryReport& report) const;
  void PrintText(const batch::EntryReport& report);
  void PrintPlan(const batch::EntryReport& report) const;

  const BatchArguments& arguments_;
  BatchFacts facts_;
  std::uint32_t total_;
  Shell& shell_;
  Clock clock_;
  std::chrono::steady_clock::time_point start_;
  std::uint32_t finished_ = 0;
  std::uint32_t estimate_ = 0;  // seconds, the whole run
  std::unique_ptr<TerminalProgress> progress_;
  std::map<std::string, std::size_t> repeated_;  // warnings, and how often they came again
  std::size_t otherFiles_ = 0;                   // skipped, and not even named as photographs
};

}  // namespace mirellon::cli
