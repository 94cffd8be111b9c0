// How a running operation is stopped from outside.
#pragma once

#include <atomic>

namespace mirellon::base {

// The abort flag. Set from any thread or from a signal handler; read between displacements, tiles and files;
// cleared only by whoever starts a run, never by the run itself.
class RunControl {
 public:
  void RequestAbort() noexcept { abort_.store(true, std::memory_order_relaxed); }
  void ClearAbort() noexcept { abort_.store(false, std::memory_order_relaxed); }
  [[nodiscard]] bool Aborted() const noexcept { return abort_.load(std::memory_order_relaxed); }

 private:
  static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");
  std::atomic<bool> abort_{false};
};

}  // namespace mirellon::base
