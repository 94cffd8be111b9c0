#include "cli/interruption.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <unistd.h>

namespace mirellon::cli {

namespace {

// Programs that end others, as timeout does, signal the process and then its group: that is one request.
constexpr std::int64_t kOneRequestMs = 100;

// A signal handler reaches nothing but what is static; these are all that is, and nobody else sees them.
std::atomic<base::RunControl*> watched{nullptr};
std::atomic<int> caught{0};
std::atomic<std::int64_t> caughtAt{0};  // milliseconds; 0: not yet
static_assert(std::atomic<base::RunControl*>::is_always_lock_free && std::atomic<int>::is_always_lock_free &&
              std::atomic<std::int64_t>::is_always_lock_free);

std::int64_t Milliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

extern "C" void HandleSignal(int signal) {
  const std::int64_t now = Milliseconds();
  std::int64_t first = 0;
  if (!caughtAt.compare_exchange_strong(first, now)) {
    if (now - first >= kOneRequestMs) _exit(128 + signal);
    return;
  }
  caught.store(signal);
  if (base::RunControl* control = watched.load()) control->RequestAbort();
}

}  // namespace

void WatchSignals(base::RunControl& control) {
  watched.store(&control);
  struct sigaction action = {};
  sigemptyset(&action.sa_mask);
  // Interrupted system calls go on: the abort is noticed where the flag is read, not by failed reads.
  action.sa_flags = SA_RESTART;
  action.sa_handler = HandleSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  struct sigaction inherited = {};
  const bool keepsRunning = sigaction(SIGHUP, nullptr, &inherited) == 0 && inherited.sa_handler == SIG_IGN;
  if (!keepsRunning) sigaction(SIGHUP, &action, nullptr);
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, nullptr);
  sigaction(SIGXFSZ, &action, nullptr);
}

int CaughtSignal() {
  return caught.load();
}

}  // namespace mirellon::cli
