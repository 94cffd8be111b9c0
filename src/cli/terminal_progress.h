// A progress bar on one line of a terminal.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <string>

#include "base/progress_sink.h"

namespace mirellon::cli {

// Draws "denoising  42 % [####......]" over itself, at most ten times a second, and wipes it when it ends.
class TerminalProgress : public base::ProgressSink {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  using Columns = std::function<int()>;  // the terminal's width now; the window may be resized meanwhile

  TerminalProgress(std::ostream& stream, std::string label, Columns columns,
                   Clock clock = std::chrono::steady_clock::now);
  ~TerminalProgress() override { Finish(); }

  void SetRange(int low, int high) override;
  void SetPosition(int position) override;
  void SetStep(int step) override;
  void Advance(int n) override;

  // Wipes the line. Nothing is drawn afterwards.
  void Finish();

 private:
  void Draw();
  [[nodiscard]] int Percent() const;  // 0 to 100
  [[nodiscard]] std::string Line(int percent) const;

  std::ostream& stream_;
  std::string label_;
  Columns columns_;
  Clock clock_;
  int low_ = 0;
  int high_ = 100;
  long long position_ = 0;
  int drawnPercent_ = -1;  // -1: nothing drawn yet
  std::size_t drawnLength_ = 0;
  std::chrono::steady_clock::time_point drawnAt_;
  bool finished_ = false;
};

}  // namespace mirellon::cli
