// Progress of a job on another thread.
#pragma once

#include <algorithm>
#include <atomic>
#include <optional>

#include "base/progress_sink.h"

namespace mirellon::ui {

// Written by the job, read whenever the window wants to know.
class SharedProgress : public base::ProgressSink {
 public:
  void SetRange(int low, int high) override {
    low_ = low;
    high_ = high;
  }
  void SetPosition(int position) override { position_ = position; }
  void SetStep(int /*step*/) override {}
  void Advance(int n) override { position_ += n; }

  // 0 to 1000; nothing as long as there is no range.
  [[nodiscard]] std::optional<int> Permille() const {
    const long long low = low_;
    const long long range = high_ - low;
    if (range <= 0) return std::nullopt;
    return static_cast<int>(std::clamp((position_ - low) * 1000 / range, 0LL, 1000LL));
  }
  void Reset() {
    SetRange(0, 0);
    SetPosition(0);
  }

 private:
  std::atomic<int> low_{0};
  std::atomic<int> high_{0};
  std::atomic<int> position_{0};
};

}  // namespace mirellon::ui
