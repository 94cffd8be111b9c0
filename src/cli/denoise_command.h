// mirellon-cli denoise INPUT OUTPUT
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Loads, denoises, sharpens and saves one photograph. `args` are those after the command's name.
[[nodiscard]] ExitStatus RunDenoise(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
