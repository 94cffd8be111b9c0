#include "cli/batch_command.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "base/file_descriptor.h"
#include "batch/batch_run.h"
#include "batch/count_images.h"
#include "cli/batch_arguments.h"
#include "cli/batch_report.h"
#include "cli/card_session.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/file_list.h"
#include "cli/profile_support.h"
#include "engine/simd_target.h"
#include "profiles/profile_store.h"
#include "settings/app_settings.h"

namespace mirellon::cli {

namespace {

class BatchCommand {
 public:
  BatchCommand(const BatchArguments& arguments, Shell& shell) : arguments_(arguments), shell_(shell) {}

  ExitStatus Run() {
    if (const std::string cause = FindSource(); !cause.empty()) {
      PrintError(shell_.err, About(Source().native(), cause));
      return ExitStatus::kInput;
    }
    if (shell_.engine.control.Aborted()) return Interrupted(Source(), shell_);
    if (const ExitStatus status = LoadStore(); status != ExitStatus::kDone) return status;
    shell_.engine.processorCount = arguments_.threads.value_or(engine::CountProcessors());
    const CardSession session(arguments_.dryRun ? Backend::kCpu : arguments_.backend, arguments_.quiet,
                              shell_);
    if (!arguments_.quiet && !session.refusal().empty()) PrintWarning(shell_.err, session.Note());
    batch::BatchOptions options = Options();
    options.useGpu = session.useGpu();
    options.fusion = session.fusion();
    const BatchFacts facts{options.quality, BackendName(session.backend()), engine::SimdTargetName(),
                           shell_.engine.processorCount};
    BatchReporter reporter(arguments_, facts, CountAll(), shell_);
    batch::BatchRun run(shell_.engine, store_, options, reporter);
    const batch::BatchSummary summary =
        arguments_.folder.empty() ? run.ProcessFiles(files_) : run.ProcessFolder(arguments_.folder);
    reporter.Summarise(summary);
    return StatusOf(summary);
  }

 private:
  [[nodiscard]] const std::filesystem::path& Source() const {
    return arguments_.folder.empty() ? arguments_.filesFrom : arguments_.folder;
  }

  // Empty = there, else why not.
  std::string FindSource() {
    if (arguments_.folder.empty()) {
      return ReadFileList(arguments_.filesFrom, shell_.in, shell_.engine.control, files_);
    }
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(arguments_.folder, error);
    if (!std::filesystem::exists(status)) return base::ErrorText(error ? error.value() : ENOENT);
    return std::filesystem::is_directory(status) ? std::string() : base::ErrorText(ENOTDIR);
  }

  // A store of the run's own.
  ExitStatus LoadStore() {
    std::vector<std::string> warnings;
    // A dry run leaves no trace.
    const auto firstRun = arguments_.dryRun ? profiles::FirstRun::kLeave : profiles::FirstRun::kSave;
    const ExitStatus status = OpenProfiles(store_, arguments_.profiles, firstRun, shell_, warnings);
    if (arguments_.quiet) return status;
    for (const std::string& warning : warnings) PrintWarning(shell_.err, warning);
    return status;
  }

  [[nodiscard]] batch::BatchOptions Options() const {
    using Reading = settings::AppSettings::Reading;
    const settings::AppSettings settings(shell_.applicationData,
                                         arguments_.dryRun ? Reading::kMakesNothing : Reading::kMakesFolder);
    batch::BatchOptions options;
    options.quality = arguments_.quality.value_or(
        static_cast<std::uint32_t>(settings.GetNumber(settings::Setting::kQuality)));
    options.jpegQuality = arguments_.jpegQuality;
    options.pngCompression = arguments_.pngCompression;
    options.metadata = arguments_.metadata;
    options.applicationData = shell_.applicationData;
    options.dryRun = arguments_.dryRun;
    // Nobody may be there to start the rest again: one bad folder costs its own photographs only.
    options.endWithoutOutputFolder = false;
    return options;
  }

  [[nodiscard]] std::uint32_t CountAll() const {
    if (arguments_.folder.empty()) return static_cast<std::uint32_t>(files_.size());
    if (!ShowsProgress(arguments_.progress, arguments_.quiet, shell_)) return 0;
    return batch::CountImages(arguments_.folder, &shell_.engine.control);
  }

  ExitStatus StatusOf(const batch::BatchSummary& summary) {
    using End = batch::BatchSummary::End;
    if (summary.end == End::kStopped || summary.end == End::kAborted) return Interrupted(Source(), shell_);
    if (summary.failed > 0) return ExitStatus::kFailed;
    if (summary.done > 0) return ExitStatus::kDone;
    PrintError(shell_.err, About(Source().native(), "no photograph to denoise"));
    return ExitStatus::kInput;
  }

  const BatchArguments& arguments_;
  Shell& shell_;
  std::vector<std::filesystem::path> files_;
  profiles::NoiseProfileStore store_;
};

}  // namespace

ExitStatus RunBatch(std::span<const char* const> args, Shell& shell) {
  BatchArguments arguments;
  const std::optional<ExitStatus> concluded = Conclude(ParseBatchArguments(args, arguments), shell);
  if (concluded) return *concluded;
  return BatchCommand(arguments, shell).Run();
}

}  // namespace mirellon::cli
