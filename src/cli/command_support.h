// What all commands do alike.
#pragma once

#include <optional>

#include "cli/arguments.h"
#include "cli/exit_status.h"
#include "cli/shell.h"
#include "imageio/load_image.h"

namespace mirellon::cli {

// Prints help or the reason of a refusal. Nothing when the command is to run, else the status to end with.
[[nodiscard]] std::optional<ExitStatus> Conclude(const ParseOutcome& outcome, Shell& shell);

// Whether progress is to be drawn.
[[nodiscard]] bool ShowsProgress(ProgressMode mode, bool quiet, const Shell& shell);

// Loads the photograph; what goes wrong is printed.
[[nodiscard]] ExitStatus LoadInput(const std::filesystem::path& input, imageio::Document& document,
                                   imageio::LoadReport& report, Shell& shell);

// Each prints why the work on `input` ends, and gives the status to end with.
[[nodiscard]] ExitStatus Interrupted(const std::filesystem::path& input, Shell& shell);
[[nodiscard]] ExitStatus NoMemory(const std::filesystem::path& input, Shell& shell);

}  // namespace mirellon::cli
