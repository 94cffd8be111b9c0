#include "ui/workbench.h"

#include <optional>
#include <utility>

namespace mirellon::ui {

Workbench::Workbench(engine::EngineContext& context, std::filesystem::path applicationData)
    : context_(context), applicationData_(std::move(applicationData)) {}

Workbench::~Workbench() {
  DropLoad();
  context_.control.RequestAbort();
  saveControl_.RequestAbort();
}

bool Workbench::CanLoad() const {
  return session_.activity() == Activity::kIdle || session_.activity() == Activity::kLoading;
}

bool Workbench::Load(const std::filesystem::path& path) {
  const std::optional<unsigned> number = session_.BeginLoad();
  if (!number) return false;
  DropLoad();
  loadControl_ = std::make_shared<base::RunControl>();
  auto outcome = std::make_shared<LoadOutcome>();
  files_.Post([outcome, path, colours = colours_,
               control = loadControl_] { *outcome = LoadPhotograph(path, colours, *control); },
              [this, outcome, path, number](bool outOfMemory) {
                if (outOfMemory) outcome->report.status = imageio::LoadStatus::kOutOfMemory;
                Loaded(*number, path, std::move(*outcome));
                StartBatchWhenFree();
              });
  emit activityChanged();
  return true;
}

void Workbench::Loaded(unsigned number, const std::filesystem::path& path, LoadOutcome outcome) {
  if (outcome.photograph.source == nullptr) {
    if (!session_.FailLoad(number)) return;
    emit activityChanged();
    emit loadFailed(path, outcome.report);
    return;
  }
  if (!session_.FinishLoad(number, std::move(outcome.photograph))) return;
  Follow(queue_.Drop());
  emit photographChanged();
  emit activityChanged();
  FollowColours();
}

bool Workbench::Denoise(const RunWish& wish) {
  if (!session_.BeginDenoise()) return false;
  run_ = wish;
  aborted_ = false;
  progress_.Reset();
  Follow(queue_.WishRun());
  emit activityChanged();
  return true;
}

bool Workbench::Save(const std::filesystem::path& target, int jpegQuality) {
  if (!session_.BeginSave()) return false;
  saveControl_.ClearAbort();
  struct Outcome {
    bool failed = true;
    imageio::SaveReport report;
  };
  auto outcome = std::make_shared<Outcome>();
  const SaveJob job{session_.result(), target, session_.photograph().path, jpegQuality, applicationData_};
  files_.Post([this, outcome, job] { outcome->failed = SavePhotograph(job, saveControl_, outcome->report); },
              [this, outcome, target](bool outOfMemory) {
                if (outOfMemory) outcome->report.status = imageio::SaveStatus::kOutOfMemory;
                session_.FinishSave(outcome->report.written, outcome->failed);
                emit activityChanged();
                if (outcome->failed) {
                  emit saveFailed(target, outcome->report);
                } else {
                  emit saved(outcome->report);
                }
              });
  emit activityChanged();
  return true;
}

bool Workbench::Close() {
  if (!session_.Close()) return false;
  DropLoad();
  Follow(queue_.Drop());
  emit photographChanged();
  emit activityChanged();
  return true;
}

void Workbench::SetColours(const ViewColours& colours) {
  if (colours == *colours_) return;
  colours_ = std::make_shared<const ViewColours>(colours);
  FollowColours();
}

void Workbench::FollowColours() {
  if (recolouring_ || !session_.hasImage() || session_.ShownIn(colours_)) return;
  recolouring_ = true;
  auto recoloured = std::make_shared<Recoloured>();
  shown_.Post([recoloured, photograph = session_.photograph(), result = session_.result(),
               colours = colours_] { *recoloured = RecolourPhotograph(photograph, result, colours); },
              [this, recoloured](bool outOfMemory) {
                recolouring_ = false;
                if (outOfMemory) return;
                // What changed meanwhile, as the photograph or the wish, is converted next.
                if (session_.Recolour(std::move(*recoloured))) emit coloursChanged();
                FollowColours();
              });
}

std::optional<int> Workbench::progressPermille() const {
  const bool files = session_.activity() == Activity::kLoading || session_.activity() == Activity::kSaving;
  return files ? std::nullopt : progress_.Permille();
}

void Workbench::WishPreview(const PreviewWish& wish) {
  if (session_.hasImage()) Follow(queue_.WishPreview(wish));
}

void Workbench::DropPreview() {
  if (session_.activity() != Activity::kDenoising) Follow(queue_.Drop());
}

void Workbench::Abort() {
  switch (session_.activity()) {
    case Activity::kLoading:
      // A number of its own makes the one on its way a stranger.
      if (const std::optional<unsigned> number = session_.BeginLoad()) session_.FailLoad(*number);
      DropLoad();
      emit activityChanged();
      return;
    case Activity::kDenoising:
      aborted_ = true;
      Follow(queue_.Drop());
      GiveUpRun();
      return;
    case Activity::kSaving:
      saveControl_.RequestAbort();
      return;
    case Activity::kIdle:
    case Activity::kBatch:
      return;
  }
}

bool Workbench::BeginBatch(std::function<void()> ready) {
  if (!session_.BeginBatch()) return false;
  batchReady_ = std::move(ready);
  Follow(queue_.Drop());
  emit activityChanged();
  StartBatchWhenFree();
  return true;
}

void Workbench::FinishBatch() {
  session_.FinishBatch();
  emit activityChanged();
}

void Workbench::DropLoad() {
  if (loadControl_ != nullptr) loadControl_->RequestAbort();
}

void Workbench::StartBatchWhenFree() {
  if (batchReady_ == nullptr || !queue_.idle() || !files_.idle()) return;
  context_.control.ClearAbort();
  std::exchange(batchReady_, nullptr)();
}

void Workbench::Follow(PreviewQueue::Action action) {
  if (action == PreviewQueue::Action::kAbort) context_.control.RequestAbort();
  if (action == PreviewQueue::Action::kStart) StartJob();
}

void Workbench::StartJob() {
  PreviewWish wish;
  const PreviewQueue::Job job = queue_.Take(wish);
  if (job == PreviewQueue::Job::kNone) return;
  context_.control.ClearAbort();
  progress_.Reset();
  if (job == PreviewQueue::Job::kRun) {
    StartRun();
  } else {
    StartPreview(wish);
  }
}

void Workbench::StartPreview(const PreviewWish& wish) {
  auto preview = std::make_shared<SharedDisplay>();
  const Photograph& photograph = session_.photograph();
  const picture::SBxPicBuf& source = *photograph.source;
  PreviewWish stored = wish;
  stored.rect = StoredRect(photograph.look.orientation, source.width, source.height, wish.rect);
  engine_.Post([this, preview, stored,
                photograph] { *preview = MakePreview(context_, photograph, stored, &progress_); },
               [this, preview, wish](bool) {
                 EngineJobEnded([&](bool wanted) {
                   if (!wanted) return;
                   if (*preview == nullptr) {
                     emit previewFailed();
                   } else {
                     emit previewReady(wish.rect, *preview);
                   }
                 });
               });
  emit previewStateChanged();
}

void Workbench::StartRun() {
  auto result = std::make_shared<std::optional<RunResult>>();
  engine_.Post(
      [this, result, run = run_, photograph = session_.photograph()] {
        *result = RunOnWhole(context_, photograph, run, &progress_);
      },
      [this, result](bool) {
        EngineJobEnded([&](bool wanted) {
          const bool done = wanted && result->has_value();
          session_.FinishDenoise(done ? std::move(*result) : std::nullopt);
          if (done) emit resultChanged();
          emit activityChanged();
          if (!done && aborted_) emit denoiseAborted();
          if (!done && !aborted_) emit denoiseFailed();
          FollowColours();
        });
      });
}

void Workbench::GiveUpRun() {
  if (session_.activity() != Activity::kDenoising || !queue_.idle()) return;
  session_.FinishDenoise(std::nullopt);
  emit activityChanged();
  emit denoiseAborted();
}

void Workbench::EngineJobEnded(const std::function<void(bool wanted)>& show) {
  const PreviewQueue::Outcome outcome = queue_.Finished();
  show(outcome.wanted);
  Follow(outcome.next);
  GiveUpRun();
  emit previewStateChanged();
  StartBatchWhenFree();
}

}  // namespace mirellon::ui
