#include "cli/interruption.h"

#include <atomic>
#include <csignal>

#include <unistd.h>

namespace mirellon::cli {

namespace {

// A signal handler reaches nothing but what is static; these two are all that is, and nobody else sees them.
std::atomic<base::RunControl*> watched{nullptr};
std::atomic<int> caught{0};
static_assert(std::atomic<base::RunControl*>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

extern "C" void HandleSignal(int signal) {
  int none = 0;
  if (!caught.compare_exchange_strong(none, signal)) _exit(128 + signal);
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
