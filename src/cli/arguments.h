// What the command line asks for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "cli/backend.h"
#include "cli/parameter_arguments.h"
#include "cli/parameter_options.h"
#include "engine/parameters.h"

namespace mirellon::cli {

enum class ProgressMode { kAuto, kAlways, kNever };

// mirellon-cli denoise INPUT OUTPUT
struct DenoiseArguments {
  std::filesystem::path input;
  std::filesystem::path output;
  ProfileRequest profile;          // the set to start from ...
  GivenValues given;               // ... and the values given over it
  std::filesystem::path profiles;  // the profile file; empty: the user's
  std::uint32_t quality = engine::kQualityMedium;
  Backend backend = Backend::kCpu;
  std::optional<std::uint32_t> threads;  // none: as many as the process may use
  std::optional<int> jpegQuality;        // percent; none: the one stored in the settings file
  std::optional<int> pngCompression = kUsualPngCompression;
  bool metadata = true;
  bool overwrite = false;
  ProgressMode progress = ProgressMode::kAuto;
  bool quiet = false;
  bool json = false;
};

// mirellon-cli info INPUT
struct InfoArguments {
  std::filesystem::path input;
  std::filesystem::path profiles;  // as above
  bool json = false;
};

// mirellon-cli gpu
struct GpuArguments {
  bool json = false;
};

// What reading a command's arguments came to.
struct ParseOutcome {
  enum class Kind { kRun, kHelp, kWrong };
  Kind kind = Kind::kRun;
  std::string text;  // kHelp: the help to print; kWrong: why, one line
};

// `args` are those after the command's name. Never throws; the arguments are complete when the kind is kRun.
[[nodiscard]] ParseOutcome ParseDenoiseArguments(std::span<const char* const> args,
                                                 DenoiseArguments& arguments);
[[nodiscard]] ParseOutcome ParseInfoArguments(std::span<const char* const> args, InfoArguments& arguments);
[[nodiscard]] ParseOutcome ParseGpuArguments(std::span<const char* const> args, GpuArguments& arguments);

}  // namespace mirellon::cli
