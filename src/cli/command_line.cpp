#include "cli/command_line.h"

#include <array>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "cli/batch_command.h"
#include "cli/denoise_command.h"
#include "cli/diagnostics.h"
#include "cli/gpu_command.h"
#include "cli/info_command.h"
#include "cli/profiles_command.h"
#include "engine/simd_target.h"

namespace mirellon::cli {

namespace {

struct Command {
  std::string_view name;
  const char* usage;
  const char* meaning;
  ExitStatus (*run)(std::span<const char* const> args, Shell& shell);
};

constexpr std::array<Command, 5> kCommands{{
    {"denoise", "denoise INPUT OUTPUT [options]", "Remove the noise of one photograph", RunDenoise},
    {"batch", "batch FOLDER [options]", "Remove the noise of all photographs of a folder tree", RunBatch},
    {"info", "info INPUT [--json]", "Tell what is known about a photograph", RunInfo},
    {"profiles", "profiles ACTION ...", "Keep sets of values for cameras and ISO speeds", RunProfiles},
    {"gpu", "gpu [--json]", "Tell whether the graphics card can be used", RunGpu},
}};

void PrintOverview(std::ostream& out) {
  std::string text = "Removes the noise of photographs.\n\nUsage:\n";
  for (const Command& command : kCommands) {
    std::string line = std::string("  ") + kProgramName + " " + command.usage;
    line.resize(48, ' ');
    text += line + command.meaning + "\n";
  }
  text += std::string("  ") + kProgramName + " --help | --version\n\n" + "'" + kProgramName +
          " COMMAND --help' lists a command's options.\n";
  out << text;
}

ExitStatus WrongUsage(Shell& shell, const std::string& text) {
  PrintError(shell.err, text + "; see '" + kProgramName + " --help'");
  return ExitStatus::kUsage;
}

ExitStatus RunCommand(const Command& command, std::span<const char* const> args, Shell& shell) {
  if (!shell.simdTarget.empty() && engine::ForceSimdTarget(shell.simdTarget)) {
    PrintError(shell.err, "MIRELLON_SIMD: " + Quoted(shell.simdTarget) + " is not one of " +
                              engine::SupportedSimdTargets() + ", which this machine has");
    return ExitStatus::kUsage;
  }
  return command.run(args, shell);
}

ExitStatus Dispatch(std::span<const char* const> args, Shell& shell) {
  if (args.empty()) return WrongUsage(shell, "no command given");
  const std::string_view first = args.front();
  if (first == "--help" || first == "-h") {
    PrintOverview(shell.out);
    return ExitStatus::kDone;
  }
  if (first == "--version") {
    shell.out << kProgramName << " " << MIRELLON_VERSION << "\n";
    return ExitStatus::kDone;
  }
  for (const Command& command : kCommands) {
    if (first == command.name) return RunCommand(command, args.subspan(1), shell);
  }
  const bool option = first.starts_with('-');
  return WrongUsage(shell, Quoted(first) + (option ? ": unknown option" : ": unknown command"));
}

}  // namespace

ExitStatus RunCommandLine(std::span<const char* const> args, Shell& shell) {
  ExitStatus status = ExitStatus::kFailed;
  // Our own functions do not throw; what ends up here is a container that got no memory.
  try {
    status = Dispatch(args, shell);
  } catch (const std::bad_alloc&) {
    PrintError(shell.err, "not enough memory");
    return ExitStatus::kMemory;
  } catch (const std::exception& error) {
    PrintError(shell.err, error.what());
    return ExitStatus::kFailed;
  }
  shell.out.flush();
  if (status == ExitStatus::kDone && !shell.out) {
    PrintError(shell.err, "cannot write to standard output");
    return ExitStatus::kFailed;
  }
  return status;
}

}  // namespace mirellon::cli
