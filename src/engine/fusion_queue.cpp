#include "engine/fusion_queue.h"

#include <algorithm>
#include <utility>

namespace mirellon::engine {

bool CardAloneIsFaster(const FusionTimes& times) {
  // One tile more is taken than finished.
  if (times.cardTiles < 3 || times.processorTiles < 3) return false;
  const double cardTile = static_cast<double>(times.cardMs) / (times.cardTiles - 1);
  const double processorTile = static_cast<double>(times.processorMs) / (times.processorTiles - 1);
  const auto start = static_cast<double>(times.cardStart);
  const double shared =
      std::max(start + times.remaining * cardTile, static_cast<double>(times.now) + processorTile);
  return shared > start + (times.remaining + 1) * cardTile;
}

FusionQueue::FusionQueue(int count, base::ProgressSink* progress, Clock clock)
    : count_(count), progress_(progress), clock_(std::move(clock)) {}

void FusionQueue::FinishTile(Side& side) {
  if (side.working) side.finishedMs += clock_() - side.start;
  side.working = false;
}

int FusionQueue::TakeNext(Side& side) {
  ++side.taken;
  side.start = clock_();
  side.working = true;
  return next_++;
}

bool FusionQueue::LeaveTheRest() {
  const FusionTimes times = {
      card_.taken, card_.finishedMs, processor_.taken + 1, processor_.finishedMs, Remaining(),
      card_.start, clock_()};
  return CardAloneIsFaster(times);
}

void FusionQueue::ShowProgress() {
  for (; shown_ < next_; ++shown_) {
    if (progress_ != nullptr) progress_->Advance(1);
  }
}

std::optional<int> FusionQueue::TakeForProcessor() {
  std::unique_lock lock(mutex_);
  FinishTile(processor_);
  while (true) {
    ShowProgress();
    if (returned_.has_value()) return std::exchange(returned_, std::nullopt);
    if (Remaining() > 0 && (cardEnded_ || (!leftToCard_ && !LeaveTheRest()))) {
      const int tile = TakeNext(processor_);
      ShowProgress();
      return tile;
    }
    if (cardEnded_) return std::nullopt;
    leftToCard_ = true;
    changed_.wait(lock);
  }
}

std::optional<int> FusionQueue::TakeForCard() {
  const std::lock_guard lock(mutex_);
  FinishTile(card_);
  if (stopped_ || Remaining() == 0) return std::nullopt;
  const int tile = TakeNext(card_);
  changed_.notify_one();
  return tile;
}

void FusionQueue::EndCard(std::optional<int> unfinished) {
  const std::lock_guard lock(mutex_);
  cardEnded_ = true;
  returned_ = unfinished;
  changed_.notify_one();
}

void FusionQueue::Stop() {
  const std::lock_guard lock(mutex_);
  stopped_ = true;
}

}  // namespace mirellon::engine
