#include "ui/model/preview_queue.h"

#include <utility>

namespace mirellon::ui {

PreviewQueue::Action PreviewQueue::WishPreview(const PreviewWish& wish) {
  waiting_ = wish;
  if (inWork_ == Job::kRun || runWaits_) return Action::kNothing;
  return inWork_ == Job::kNone ? Action::kStart : Stop();
}

PreviewQueue::Action PreviewQueue::WishRun() {
  if (inWork_ == Job::kRun || runWaits_) return Action::kNothing;
  runWaits_ = true;
  waiting_.reset();
  return inWork_ == Job::kNone ? Action::kStart : Stop();
}

PreviewQueue::Action PreviewQueue::Drop() {
  waiting_.reset();
  runWaits_ = false;
  return inWork_ == Job::kNone ? Action::kNothing : Stop();
}

PreviewQueue::Job PreviewQueue::Take(PreviewWish& wish) {
  if (inWork_ != Job::kNone) return Job::kNone;
  if (std::exchange(runWaits_, false)) {
    inWork_ = Job::kRun;
  } else if (waiting_) {
    wish = *waiting_;
    waiting_.reset();
    inWork_ = Job::kPreview;
  }
  wanted_ = inWork_ != Job::kNone;
  return inWork_;
}

PreviewQueue::Outcome PreviewQueue::Finished() {
  inWork_ = Job::kNone;
  const bool wanted = std::exchange(wanted_, false);
  return {wanted, runWaits_ || waiting_ ? Action::kStart : Action::kNothing};
}

PreviewQueue::Action PreviewQueue::Stop() {
  return std::exchange(wanted_, false) ? Action::kAbort : Action::kNothing;
}

}  // namespace mirellon::ui
