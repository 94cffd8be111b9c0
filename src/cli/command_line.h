// The program from its arguments to its exit status.
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Runs the command that the arguments name (the program's own name not among them). Every failure leaves one
// line on shell.err. Never throws.
[[nodiscard]] ExitStatus RunCommandLine(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
