// Work beside the window.
#pragma once

#include <QObject>
#include <QThread>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>

#include "ui/posted_calls.h"

namespace mirellon::ui {

// One thread that does one job after the other. Belongs to the thread that made it.
class BackgroundWorker : public QObject {
 public:
  // Once for each job, on the owner's thread, from its event loop. `outOfMemory`: the job broke off.
  using Done = std::function<void(bool outOfMemory)>;

  // `stackBytes`: the thread's stack, 0 for the system's usual one. It is reserved, not used up.
  explicit BackgroundWorker(QObject* parent = nullptr, unsigned stackBytes = 0);
  // Waits for the job in work (whoever wants it short stops the job first); those behind it are not begun,
  // and no `done` is called any more.
  ~BackgroundWorker() override;
  BackgroundWorker(const BackgroundWorker&) = delete;
  BackgroundWorker& operator=(const BackgroundWorker&) = delete;

  // What both functions hold is freed on the owner's thread or, for `work`, on the worker's.
  void Post(std::function<void()> work, Done done);
  // No job is left whose `done` has not been called.
  [[nodiscard]] bool idle() const { return unfinished_ == 0; }

 private:
  struct Job {
    std::function<void()> work;
    Done done;
  };
  void Loop();
  void Do(Job job);

  std::size_t unfinished_ = 0;  // the owner's thread alone
  PostedCalls ended_;
  std::mutex mutex_;
  std::condition_variable_any wake_;
  std::deque<Job> jobs_;
  std::stop_source stop_;
  std::unique_ptr<QThread> thread_;  // has ended before any member goes
};

}  // namespace mirellon::ui
