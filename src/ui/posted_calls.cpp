#include "ui/posted_calls.h"

#include <utility>

namespace mirellon::ui {

PostedCalls::PostedCalls() {
  connect(this, &PostedCalls::posted, this, &PostedCalls::CallNext, Qt::QueuedConnection);
}

void PostedCalls::Post(std::function<void()> call) {
  {
    const std::scoped_lock lock(mutex_);
    calls_.push_back(std::move(call));
  }
  emit posted();
}

// One for each signal, so that what a call lets in by an event loop of its own finds the next ones.
void PostedCalls::CallNext() {
  std::function<void()> call;
  {
    const std::scoped_lock lock(mutex_);
    call = std::move(calls_.front());
    calls_.pop_front();
  }
  call();
}

}  // namespace mirellon::ui
