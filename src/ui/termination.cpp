#include "ui/termination.h"

#include <array>
#include <atomic>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace mirellon::ui {

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler reaches nothing but what lies outside of all objects.
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void Tell(int /*signal*/) {
  const char byte = 0;
  // A pipe that is full has told already.
  [[maybe_unused]] const ssize_t written = write(writeEnd, &byte, 1);
}

void Install(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | (handler == Tell ? SA_RESETHAND : 0);
  for (const int number : kSignals) sigaction(number, &action, nullptr);
}

}  // namespace

Termination::Termination() {
  std::array<int, 2> ends{-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  readEnd_ = ends[0];
  writeEnd = ends[1];
  notifier_ = new QSocketNotifier(readEnd_, QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] {
    notifier_->setEnabled(false);
    emit requested();
  });
  Install(Tell);
}

Termination::~Termination() {
  if (readEnd_ < 0) return;
  Install(SIG_DFL);
  close(writeEnd.exchange(-1));
  close(readEnd_);
}

}  // namespace mirellon::ui
