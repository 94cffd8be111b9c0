#include "ui/background_worker.h"

#include <new>
#include <utility>

namespace mirellon::ui {

BackgroundWorker::BackgroundWorker(QObject* parent, unsigned stackBytes)
    : QObject(parent), thread_(QThread::create([this] { Loop(); })) {
  thread_->setStackSize(stackBytes);
  thread_->start();
  if (thread_->isRunning() || stackBytes == 0) return;
  // Where so much cannot be reserved, the usual stack serves nearly everything.
  thread_->setStackSize(0);
  thread_->start();
}

BackgroundWorker::~BackgroundWorker() {
  stop_.request_stop();
  thread_->wait();
}

void BackgroundWorker::Post(std::function<void()> work, Done done) {
  ++unfinished_;
  {
    const std::scoped_lock lock(mutex_);
    jobs_.push_back({std::move(work), std::move(done)});
  }
  wake_.notify_one();
}

void BackgroundWorker::Loop() {
  const std::stop_token stop = stop_.get_token();
  while (true) {
    Job job;
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, stop, [this] { return !jobs_.empty(); });
      if (stop.stop_requested()) return;
      job = std::move(jobs_.front());
      jobs_.pop_front();
    }
    Do(std::move(job));
  }
}

void BackgroundWorker::Do(Job job) {
  bool outOfMemory = false;
  try {
    job.work();
  } catch (const std::bad_alloc&) {
    outOfMemory = true;
  }
  job.work = nullptr;
  ended_.Post([this, done = std::move(job.done), outOfMemory] {
    --unfinished_;
    done(outOfMemory);
  });
}

}  // namespace mirellon::ui
