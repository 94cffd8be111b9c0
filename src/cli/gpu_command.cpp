#include "cli/gpu_command.h"

#include "cli/arguments.h"
#include "cli/card_session.h"
#include "cli/command_support.h"
#include "cli/report.h"

namespace mirellon::cli {

namespace {

GpuReport ReportOf(const CardSession& session) {
  const gpu::GpuFilter& filter = *session.filter();
  const gpu::CardInfo& info = filter.info();
  GpuReport report;
  report.usable = session.useGpu();
  report.refusal = session.refusal();
  report.vendor = info.vendor;
  report.renderer = info.renderer;
  report.version = info.version;
  for (std::size_t i = 0; i < gpu::kNeededExtensions.size(); ++i) {
    report.extensions.emplace_back(gpu::kNeededExtensions[i], info.extensions[i]);
  }
  report.largestTile = filter.maxTileSide();
  report.format = info.format;
  if (session.agreement().answered) report.largestDifference = session.agreement().largestDifference;
  return report;
}

}  // namespace

ExitStatus RunGpu(std::span<const char* const> args, Shell& shell) {
  GpuArguments arguments;
  const std::optional<ExitStatus> concluded = Conclude(ParseGpuArguments(args, arguments), shell);
  if (concluded) return *concluded;
  const CardSession session(Backend::kGpu, /*quiet=*/false, shell);
  const GpuReport report = ReportOf(session);
  arguments.json ? PrintJson(shell.out, report) : PrintText(shell.out, report);
  return report.usable ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace mirellon::cli
