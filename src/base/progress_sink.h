// Where a running operation reports how far it is.
#pragma once

namespace mirellon::base {

// A progress bar as its user sees it: a range, a position, a step. Operations take a pointer to one; null
// means that nobody is looking. All calls of one operation come from the thread that called it.
class ProgressSink {
 public:
  ProgressSink() = default;
  ProgressSink(const ProgressSink&) = delete;
  ProgressSink& operator=(const ProgressSink&) = delete;
  virtual ~ProgressSink() = default;

  virtual void SetRange(int low, int high) = 0;
  virtual void SetPosition(int position) = 0;
  virtual void SetStep(int step) = 0;
  // Moves the position on by n; may pass the end of the range, where a bar simply stays full.
  virtual void Advance(int n) = 0;
};

}  // namespace mirellon::base
