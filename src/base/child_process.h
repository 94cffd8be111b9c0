// Running another program to its end.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "base/run_control.h"

namespace mirellon::base {

// How long another program may take before it counts as hung: far more than honest work on one file does.
inline constexpr std::chrono::milliseconds kChildLimit = std::chrono::minutes(5);

struct ChildResult {
  enum class End {
    kExited,      // of its own; `status` tells how
    kNotStarted,  // no such program, or the system refused; `error` tells
    kKilled,      // by signal `status`
    kAborted,     // by us, on request of the run control
    kOverdue,     // by us, as it took longer than the limit
    kUnknown,     // it ran, but its end was hidden from us
  };
  End end = End::kUnknown;
  int status = 0;
  int error = 0;
  std::string output;  // the first 64 KiB of its standard output and error together
};

// Starts a program, found through PATH, with `folder` as its working folder, and waits. No shell reads the
// arguments. It gets no input, our environment, and a process group of its own, so a Ctrl-C at the terminal
// is ours to act on; an abort request of `control` (may be null) kills the whole group, and so does the end
// of `limit`. `arguments[0]` is the program's name.
[[nodiscard]] ChildResult RunChild(const std::vector<std::string>& arguments,
                                   const std::filesystem::path& folder, const RunControl* control,
                                   std::chrono::milliseconds limit = kChildLimit);

}  // namespace mirellon::base
