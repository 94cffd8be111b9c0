// Which of the engine's jobs runs next.
#pragma once

#include <optional>

#include "engine/parameters.h"
#include "ui/model/preview_rectangle.h"

namespace mirellon::ui {

// What a preview is made of.
struct PreviewWish {
  PictureRect rect{};
  engine::DenoiseParameters parameters;
  std::uint32_t quality = engine::kQualityMedium;
};

// The engine does one job at a time. A newer wish for a preview replaces the one that waits and makes the one
// in work stop; a run on the whole photograph goes before all previews, and none starts while it lasts. Used
// from one thread; starting and stopping jobs is the owner's business.
class PreviewQueue {
 public:
  enum class Job { kNone, kPreview, kRun };
  // What the owner has to do now.
  enum class Action {
    kNothing,
    kStart,  // Take() a job and start it
    kAbort,  // ask the job in work to stop; Finished() tells what follows
  };

  [[nodiscard]] Action WishPreview(const PreviewWish& wish);
  [[nodiscard]] Action WishRun();
  // Nothing that was wished for is wanted any more (the photograph was closed or replaced).
  [[nodiscard]] Action Drop();

  // The next job, which is in work from now on. For a preview, `wish` receives what to make.
  [[nodiscard]] Job Take(PreviewWish& wish);

  struct Outcome {
    bool wanted = false;  // the job's result is still the one to show
    Action next = Action::kNothing;
  };
  // The job in work has ended, stopped or not.
  [[nodiscard]] Outcome Finished();

  [[nodiscard]] bool idle() const { return inWork_ == Job::kNone && !runWaits_ && !waiting_; }

 private:
  [[nodiscard]] Action Stop();

  Job inWork_ = Job::kNone;
  bool wanted_ = false;  // the job in work
  bool runWaits_ = false;
  std::optional<PreviewWish> waiting_;
};

}  // namespace mirellon::ui
