// mirellon-cli batch FOLDER
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Denoises all photographs of a folder tree or a list. `args` are those after the command's name.
[[nodiscard]] ExitStatus RunBatch(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
