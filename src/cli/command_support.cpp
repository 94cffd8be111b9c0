#include "cli/command_support.h"

#include "cli/diagnostics.h"

namespace mirellon::cli {

std::optional<ExitStatus> Conclude(const ParseOutcome& outcome, Shell& shell) {
  switch (outcome.kind) {
    case ParseOutcome::Kind::kHelp:
      shell.out << outcome.text;
      return ExitStatus::kDone;
    case ParseOutcome::Kind::kWrong:
      PrintError(shell.err, outcome.text);
      return ExitStatus::kUsage;
    case ParseOutcome::Kind::kRun:
      break;
  }
  return std::nullopt;
}

bool ShowsProgress(ProgressMode mode, bool quiet, const Shell& shell) {
  if (quiet || mode == ProgressMode::kNever) return false;
  return mode == ProgressMode::kAlways || shell.errIsTerminal;
}

ExitStatus LoadInput(const std::filesystem::path& input, imageio::Document& document,
                     imageio::LoadReport& report, Shell& shell) {
  std::filesystem::path path = input;
  const bool failed = imageio::LoadImageFile(document, path, /*quiet=*/true, &report);
  if (!failed) return ExitStatus::kDone;
  PrintError(shell.err, About(input.native(), report.cause));
  return report.status == imageio::LoadStatus::kOutOfMemory ? ExitStatus::kMemory : ExitStatus::kInput;
}

ExitStatus Interrupted(const std::filesystem::path& input, Shell& shell) {
  PrintError(shell.err, About(input.native(), "interrupted"));
  const int signal = shell.caughtSignal();
  return signal == 0 ? ExitStatus::kInterrupted : static_cast<ExitStatus>(128 + signal);
}

ExitStatus NoMemory(const std::filesystem::path& input, Shell& shell) {
  PrintError(shell.err, About(input.native(), "not enough memory"));
  return ExitStatus::kMemory;
}

}  // namespace mirellon::cli
