#include "ui/batch_controller.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "batch/count_images.h"
#include "batch/folder_walk.h"
#include "ui/model/thumbnail.h"
#include "ui/thumbnail_view.h"

namespace mirellon::ui {

namespace {

// The engine's frames are large.
constexpr unsigned kBatchStackBytes = 100U << 20U;

bool IsFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

QImage ThumbnailOf(const picture::SBxPicBuf& picture, Orientation orientation) {
  const picture::PicBuf small = MakeThumbnail(picture, ThumbnailView::kPictureSide, orientation);
  if (small.empty()) return {};
  return QImage(small->samples, small->width, small->height, small->rowStride, QImage::Format_BGR888).copy();
}

// Folders replaced by the files below them, results left out.
std::vector<std::filesystem::path> FilesOf(const BatchWork& work, const base::RunControl& control) {
  std::vector<std::filesystem::path> files;
  for (const std::filesystem::path& path : work.paths) {
    if (!IsFolder(path)) {
      files.push_back(path);
      continue;
    }
    batch::FolderWalk walk(path, batch::FolderWalk::Results::kLeaveOut);
    while (!control.Aborted()) {
      const std::optional<batch::WalkItem> item = walk.Next();
      if (!item) break;
      if (item->kind == batch::WalkItem::Kind::kFile) files.push_back(item->path);
    }
  }
  return files;
}

std::uint32_t CountOf(const BatchWork& work, const base::RunControl& control) {
  std::uint32_t count = 0;
  for (const std::filesystem::path& path : work.paths) {
    if (IsFolder(path)) {
      count += batch::CountImages(path, &control);
    } else if (batch::HasCountedExtension(path.filename().native())) {
      ++count;
    }
  }
  return count;
}

}  // namespace

// Called on the run's thread; what it tells reaches the window through its event loop.
class BatchController::Observer : public batch::BatchObserver {
 public:
  explicit Observer(BatchController& controller) : controller_(controller) {}

  void EntryStarted(const std::filesystem::path& file) override {
    Tell([this, file] { emit controller_.entryStarted(file); });
  }
  void PictureLoaded(const picture::SBxPicBuf& source, int orientation) override {
    orientation_ = OrientationOf(orientation);
    Tell([this, image = ThumbnailOf(source, orientation_)] { emit controller_.loaded(image); });
  }
  void PictureDenoised(const picture::SBxPicBuf& result) override {
    Tell([this, image = ThumbnailOf(result, orientation_)] { emit controller_.denoised(image); });
  }
  void EntryEnded(const batch::EntryReport& report) override {
    if (IsTold(report)) entries.push_back(EntryOf(report));
  }
  void ImageDone() override {
    Tell([this] { emit controller_.imageDone(); });
  }
  base::ProgressSink* PictureProgress() override {
    controller_.progress_.Reset();
    return &controller_.progress_;
  }

  std::vector<BatchEntry> entries;

 private:
  template <typename F>
  void Tell(F tell) {
    controller_.told_.Post(std::move(tell));
  }

  BatchController& controller_;
  Orientation orientation_ = Orientation::kUpright;
};

BatchController::BatchController(DesktopContext& context)
    : context_(context), observer_(std::make_unique<Observer>(*this)), worker_(nullptr, kBatchStackBytes) {}

BatchController::~BatchController() {
  countControl_->RequestAbort();
  if (running()) Abort();
}

void BatchController::Count(const BatchWork& work) {
  const unsigned number = ++counts_;
  countControl_->RequestAbort();
  countControl_ = std::make_shared<base::RunControl>();
  auto images = std::make_shared<std::uint32_t>(0);
  counter_.Post([work, images, control = countControl_] { *images = CountOf(work, *control); },
                [this, number, images](bool) {
                  if (number == counts_) emit counted(*images);
                });
}

void BatchController::Start(const BatchWork& work, std::uint32_t quality) {
  observer_->entries.clear();
  store_ = profiles::NoiseProfileStore(
      profiles::StandardProfilePaths(context_.applicationData, context_.resourceFolders));
  batch::BatchOptions options;
  options.quality = quality;
  options.useGpu = context_.loaded.hwAccel != 0;
  options.fusion = context_.loaded.fusion != 0;
  options.applicationData = context_.applicationData;
  run_ = std::make_unique<batch::BatchRun>(context_.engine, store_, std::move(options), *observer_);
  auto outcome = std::make_shared<BatchOutcome>();
  worker_.Post([this, work, outcome] { Run(work, *outcome); },
               [this, outcome](bool outOfMemory) {
                 run_.reset();
                 if (outOfMemory) outcome->summary.end = batch::BatchSummary::End::kAborted;
                 outcome->entries = std::move(observer_->entries);
                 emit finished(*outcome);
               });
}

void BatchController::Run(const BatchWork& work, BatchOutcome& outcome) {
  (void)store_.Load();  // what could be read is in use
  if (!RootOf(work).empty()) {
    outcome.summary = run_->ProcessFolder(work.paths.front());
  } else {
    outcome.summary = run_->ProcessFiles(FilesOf(work, context_.engine.control));
  }
}

void BatchController::Stop() {
  if (running()) run_->RequestStop();
}

void BatchController::Abort() {
  Stop();
  context_.engine.control.RequestAbort();
}

}  // namespace mirellon::ui
