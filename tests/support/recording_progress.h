// A progress bar that remembers what it was told.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/progress_sink.h"

namespace mirellon::test {

class RecordingProgress : public base::ProgressSink {
 public:
  void SetRange(int low, int high) override {
    calls_.push_back("range " + std::to_string(low) + " " + std::to_string(high));
  }
  void SetPosition(int position) override {
    calls_.push_back("position " + std::to_string(position));
    position_ = position;
  }
  void SetStep(int step) override { calls_.push_back("step " + std::to_string(step)); }
  void Advance(int n) override {
    if (calls_.size() < kKept) calls_.push_back("advance " + std::to_string(n));
    position_ += n;
    largestStep_ = std::max(largestStep_, n);
    if (onAdvance_) onAdvance_(position_);
  }

  void OnAdvance(std::function<void(int)> action) { onAdvance_ = std::move(action); }
  [[nodiscard]] int position() const { return position_; }
  [[nodiscard]] int largestStep() const { return largestStep_; }
  // The first calls, in order.
  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

 private:
  static constexpr std::size_t kKept = 8;
  std::vector<std::string> calls_;
  std::function<void(int)> onAdvance_;
  int position_ = 0;
  int largestStep_ = 0;
};

}  // namespace mirellon::test
