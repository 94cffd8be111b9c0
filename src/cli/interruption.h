// What the signals that end a program do here.
#pragma once

#include "base/run_control.h"

namespace mirellon::cli {

// SIGINT, SIGTERM and (unless the caller has it ignored, as nohup does) SIGHUP request an abort of `control`,
// which must outlive the program's work; a second one, a tenth of a second later or more, ends the process at
// once with 128 + its number. A broken pipe and a file grown beyond its limit become write errors instead of
// signals. Called once, before any work.
void WatchSignals(base::RunControl& control);

// The signal that asked for the abort, 0 when none did.
[[nodiscard]] int CaughtSignal();

}  // namespace mirellon::cli
