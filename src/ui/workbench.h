// The photograph in work and the jobs done on it, without any widget.
#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "base/run_control.h"
#include "engine/engine_context.h"
#include "ui/background_worker.h"
#include "ui/model/colour_transform.h"
#include "ui/model/document_session.h"
#include "ui/model/photo_jobs.h"
#include "ui/model/preview_queue.h"
#include "ui/model/shared_progress.h"

namespace mirellon::ui {

// Lives on the window's thread, never blocks it. What a job has made is told from the event loop. The engine
// does one job at a time, files are read and written beside it.
class Workbench : public QObject {
  Q_OBJECT

 public:
  // `context` is the application's; nobody else runs the engine with it.
  Workbench(engine::EngineContext& context, std::filesystem::path applicationData);
  // Stops every job and waits for it.
  ~Workbench() override;
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  [[nodiscard]] bool CanLoad() const;
  // Each is refused (false) while the session forbids it.
  bool Load(const std::filesystem::path& path);
  bool Denoise(const RunWish& wish);
  bool Save(const std::filesystem::path& target, int jpegQuality);
  bool Close();

  // For all that is shown from now on. What is shown already follows as soon as it has been converted, see
  // coloursChanged().
  void SetColours(const ViewColours& colours);

  // A preview with these settings, as soon as the engine is free; the one before is not made any more. The
  // rectangle is one of the upright photograph, as it is shown; previewReady() brings it back.
  void WishPreview(const PreviewWish& wish);
  // Nothing is previewed any more.
  void DropPreview();

  // Stops what is being done, a preview excepted. A load goes on unseen, its photograph is dropped.
  void Abort();
  // For a batch: engine and files are wanted elsewhere. Calls `ready` once no job uses them any more.
  bool BeginBatch(std::function<void()> ready);
  void FinishBatch();

  [[nodiscard]] const DocumentSession& session() const { return session_; }
  // Of the engine's job; nothing as long as that is unknown, and for what goes on without a number.
  [[nodiscard]] std::optional<int> progressPermille() const;
  [[nodiscard]] bool previewing() const { return !queue_.idle() && session_.activity() == Activity::kIdle; }
  // Nothing runs.
  [[nodiscard]] bool idle() const { return queue_.idle() && session_.activity() == Activity::kIdle; }

 signals:
  void activityChanged();
  void photographChanged();  // opened or closed
  void resultChanged();
  void coloursChanged();  // photograph and result are shown anew; a preview has to be wished for again
  void previewReady(const mirellon::ui::PictureRect& rect, const mirellon::ui::SharedDisplay& preview);
  void previewStateChanged();  // one was begun or ended
  void loadFailed(const std::filesystem::path& path, const mirellon::imageio::LoadReport& report);
  void previewFailed();   // out of memory
  void denoiseFailed();   // likewise
  void denoiseAborted();  // by Abort()
  void saved(const mirellon::imageio::SaveReport& report);
  void saveFailed(const std::filesystem::path& target, const mirellon::imageio::SaveReport& report);

 private:
  void Loaded(unsigned number, const std::filesystem::path& path, LoadOutcome outcome);
  void Follow(PreviewQueue::Action action);
  void StartJob();
  void StartPreview(const PreviewWish& wish);
  void StartRun();
  void EngineJobEnded(const std::function<void(bool wanted)>& show);
  // A run that was stopped before it began leaves nothing that would end it.
  void GiveUpRun();
  void DropLoad();
  void StartBatchWhenFree();
  // Has shown again what is still in other colours.
  void FollowColours();

  engine::EngineContext& context_;
  std::filesystem::path applicationData_;
  DocumentSession session_;
  PreviewQueue queue_;
  RunWish run_;  // that waits or is in work
  SharedProgress progress_;
  base::RunControl saveControl_;
  // Of the latest load: each has its own, so that one that was replaced gives up.
  std::shared_ptr<base::RunControl> loadControl_;
  bool aborted_ = false;  // the run, by its user
  SharedColours colours_ = std::make_shared<const ViewColours>();
  bool recolouring_ = false;
  std::function<void()> batchReady_;
  BackgroundWorker files_;
  BackgroundWorker engine_;
  BackgroundWorker shown_;
};

}  // namespace mirellon::ui
