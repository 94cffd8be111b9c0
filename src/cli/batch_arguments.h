// mirellon-cli batch FOLDER
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

#include "cli/arguments.h"
#include "cli/parameter_options.h"

namespace mirellon::cli {

struct BatchArguments {
  std::filesystem::path folder;          // either of the two
  std::filesystem::path filesFrom;       // "-": standard input
  std::optional<std::uint32_t> quality;  // none: the one stored in the settings file
  Backend backend = Backend::kCpu;
  std::optional<std::uint32_t> threads;  // none: as many as the process may use
  std::optional<int> jpegQuality;        // percent; none: the one stored in the settings file
  std::optional<int> pngCompression = kUsualPngCompression;
  bool metadata = true;
  std::filesystem::path profiles;  // empty: the user's
  bool dryRun = false;
  ProgressMode progress = ProgressMode::kAuto;
  bool quiet = false;
  bool json = false;
};

// As ParseDenoiseArguments.
[[nodiscard]] ParseOutcome ParseBatchArguments(std::span<const char* const> args, BatchArguments& arguments);

}  // namespace mirellon::cli
