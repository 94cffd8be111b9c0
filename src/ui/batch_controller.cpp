#include "ui/batch_controller.h"

#include <utility>

#include "batch/count_images.h"

namespace mirellon::ui {

// Called on the run's thread; what it tells reaches the window through its event loop.
class BatchController::Observer : public batch::BatchObserver {
 public:
  explicit Observer(BatchController& controller) : controller_(controller) {}

  void EntryStarted(const std::filesystem::path& file) override {
    QMetaObject::invokeMethod(
        &controller_, [this, file] { emit controller_.entryStarted(file); }, Qt::QueuedConnection);
  }
  void EntryEnded(const batch::EntryReport& report) override {
    const bool wrong = report.end == batch::EntryEnd::kFailed ||
                       (report.end == batch::EntryEnd::kSkipped && report.photograph);
    if (wrong) problems.push_back({report.input, report.end, report.cause});
  }
  void ImageDone() override {
    QMetaObject::invokeMethod(
        &controller_, [this] { emit controller_.imageDone(); }, Qt::QueuedConnection);
  }
  base::ProgressSink* PictureProgress() override { return nullptr; }

  std::vector<BatchProblem> problems;

 private:
  BatchController& controller_;
};

BatchController::BatchController(DesktopContext& context)
    : context_(context), observer_(std::make_unique<Observer>(*this)) {}

BatchController::~BatchController() {
  countControl_.RequestAbort();
  if (running()) Abort();
}

void BatchController::Count(const std::filesystem::path& folder) {
  const unsigned number = ++counts_;
  auto images = std::make_shared<std::uint32_t>(0);
  counter_.Post([this, folder, images] { *images = batch::CountImages(folder, &countControl_); },
                [this, number, images](bool) {
                  if (number == counts_) emit counted(*images);
                });
}

void BatchController::Start(const std::filesystem::path& folder, std::uint32_t quality) {
  observer_->problems.clear();
  store_ = profiles::NoiseProfileStore(
      profiles::StandardProfilePaths(context_.applicationData, context_.resourceFolders));
  batch::BatchOptions options;
  options.quality = quality;
  options.useGpu = context_.loaded.hwAccel != 0;
  options.fusion = context_.loaded.fusion != 0;
  options.applicationData = context_.applicationData;
  run_ = std::make_unique<batch::BatchRun>(context_.engine, store_, std::move(options), *observer_);
  auto outcome = std::make_shared<BatchOutcome>();
  worker_.Post([this, folder, outcome] { Run(folder, *outcome); },
               [this, outcome](bool outOfMemory) {
                 run_.reset();
                 if (outOfMemory) outcome->summary.end = batch::BatchSummary::End::kAborted;
                 outcome->problems = std::move(observer_->problems);
                 emit finished(*outcome);
               });
}

void BatchController::Run(const std::filesystem::path& folder, BatchOutcome& outcome) {
  (void)store_.Load();  // what could be read is in use
  outcome.summary = run_->ProcessFolder(folder);
}

void BatchController::Stop() {
  if (running()) run_->RequestStop();
}

void BatchController::Abort() {
  Stop();
  context_.engine.control.RequestAbort();
}

}  // namespace mirellon::ui
