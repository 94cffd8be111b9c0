// A batch run beside the window.
#pragma once

#include <QObject>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "batch/batch_run.h"
#include "ui/background_worker.h"
#include "ui/desktop_context.h"

namespace mirellon::ui {

// What went wrong with one file or folder of a run.
struct BatchProblem {
  std::filesystem::path path;
  batch::EntryEnd end = batch::EntryEnd::kSkipped;
  std::string cause;
};

struct BatchOutcome {
  batch::BatchSummary summary;
  std::vector<BatchProblem> problems;  // photographs that were skipped, and what failed
};

// Lives on the window's thread; one run at a time. The signals come from the event loop.
class BatchController : public QObject {
  Q_OBJECT

 public:
  explicit BatchController(DesktopContext& context);
  // Stops and waits.
  ~BatchController() override;
  BatchController(const BatchController&) = delete;
  BatchController& operator=(const BatchController&) = delete;

  // Counts the folder's images; counted() tells. A folder counted before is not told of any more.
  void Count(const std::filesystem::path& folder);
  // Runs on the folder; the engine must be free. finished() follows in any case.
  void Start(const std::filesystem::path& folder, std::uint32_t quality);
  void Stop();   // the picture in work is finished first
  void Abort();  // at once

  [[nodiscard]] bool running() const { return run_ != nullptr; }

 signals:
  void counted(std::uint32_t images);
  void entryStarted(const std::filesystem::path& file);
  void imageDone();
  void finished(const mirellon::ui::BatchOutcome& outcome);

 private:
  class Observer;
  void Run(const std::filesystem::path& folder, BatchOutcome& outcome);

  DesktopContext& context_;
  base::RunControl countControl_;
  unsigned counts_ = 0;
  std::unique_ptr<Observer> observer_;
  profiles::NoiseProfileStore store_;  // the run's own
  std::unique_ptr<batch::BatchRun> run_;
  BackgroundWorker counter_;
  BackgroundWorker worker_;
};

}  // namespace mirellon::ui
