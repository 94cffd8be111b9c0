// mirellon-cli gpu
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Tells whether the graphics card can be used, and why not: kDone when it can, else kFailed. `args` are those
// after the command's name.
[[nodiscard]] ExitStatus RunGpu(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
