// A batch run beside the window.
#pragma once

#include <QImage>
#include <QObject>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "batch/batch_run.h"
#include "ui/background_worker.h"
#include "ui/desktop_context.h"
#include "ui/model/batch_outcome.h"
#include "ui/model/shared_progress.h"
#include "ui/posted_calls.h"

namespace mirellon::ui {

// Lives on the window's thread; one run at a time. The signals come from the event loop.
class BatchController : public QObject {
  Q_OBJECT

 public:
  explicit BatchController(DesktopContext& context);
  // Stops and waits.
  ~BatchController() override;
  BatchController(const BatchController&) = delete;
  BatchController& operator=(const BatchController&) = delete;

  // Counts the images; counted() tells. A count asked for before ends, and is not told of.
  void Count(const BatchWork& work);
  // The engine must be free. finished() follows in any case.
  void Start(const BatchWork& work, std::uint32_t quality);
  void Stop();   // the picture in work is finished first
  void Abort();  // at once

  [[nodiscard]] bool running() const { return run_ != nullptr; }
  // Of the picture in work.
  [[nodiscard]] std::optional<int> progressPermille() const { return progress_.Permille(); }

 signals:
  void counted(std::uint32_t images);
  void entryStarted(const std::filesystem::path& file);
  // Of the one in work, small and upright: as it was, and once it is denoised.
  void loaded(const QImage& thumbnail);
  void denoised(const QImage& thumbnail);
  void imageDone();
  void finished(const mirellon::ui::BatchOutcome& outcome);

 private:
  class Observer;
  void Run(const BatchWork& work, BatchOutcome& outcome);

  DesktopContext& context_;
  std::shared_ptr<base::RunControl> countControl_ = std::make_shared<base::RunControl>();
  unsigned counts_ = 0;
  SharedProgress progress_;
  PostedCalls told_;  // by the run
  std::unique_ptr<Observer> observer_;
  profiles::NoiseProfileStore store_;  // the run's own
  std::unique_ptr<batch::BatchRun> run_;
  BackgroundWorker counter_;
  BackgroundWorker worker_;
};

}  // namespace mirellon::ui
