// mirellon-cli info INPUT
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Tells what is known about one photograph. `args` are those after the command's name.
[[nodiscard]] ExitStatus RunInfo(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
