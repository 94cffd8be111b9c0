// mirellon-cli profiles ACTION ...
#pragma once

#include <span>

#include "cli/exit_status.h"
#include "cli/shell.h"

namespace mirellon::cli {

// Lists, shows and changes stored sets. `args` are those after the command's name.
[[nodiscard]] ExitStatus RunProfiles(std::span<const char* const> args, Shell& shell);

}  // namespace mirellon::cli
