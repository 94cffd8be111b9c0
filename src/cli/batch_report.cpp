#include "cli/batch_report.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "batch/time_estimate.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/json_parts.h"
#include "cli/parameter_options.h"

namespace mirellon::cli {

namespace {

using batch::EntryEnd;
using batch::EntryReport;

constexpr const char* StatusWord(EntryEnd end) {
  switch (end) {
    case EntryEnd::kDone:
      return "done";
    case EntryEnd::kSkipped:
      return "skipped";
    case EntryEnd::kFailed:
      break;
  }
  return "failed";
}

Json ProfileJson(const EntryReport& report) {
  // Without a set in the store, that of the photograph before was used.
  if (report.profile.parameters == nullptr)
    return {{"camera", nullptr}, {"iso", nullptr}, {"rule", "previous"}};
  return {{"camera", base::Utf8FromWide(report.camera)},
          {"iso", report.profile.parameters->iso},
          {"rule", profiles::RuleName(report.profile.rule)}};
}

std::string Counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what;
}

}  // namespace

BatchReporter::BatchReporter(const BatchArguments& arguments, BatchFacts facts, std::uint32_t total,
                             Shell& shell, Clock clock)
    : arguments_(arguments),
      facts_(std::move(facts)),
      total_(total),
      shell_(shell),
      clock_(std::move(clock)),
      start_(clock_()) {}

std::uint32_t BatchReporter::Elapsed() const {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(clock_() - start_).count();
  return static_cast<std::uint32_t>(std::max<decltype(seconds)>(seconds, 0));
}

std::string BatchReporter::ProgressLabel() const {
  std::string label =
      std::to_string(finished_ + 1) + "/" + std::to_string(total_) + " " + batch::ClockText(Elapsed());
  if (finished_ > 0) label += " of " + batch::ClockText(estimate_);
  return label;
}

void BatchReporter::EntryStarted(const std::filesystem::path& /*file*/) {}

base::ProgressSink* BatchReporter::PictureProgress() {
  if (ShowsProgress(arguments_.progress, arguments_.quiet, shell_)) {
    progress_ = std::make_unique<TerminalProgress>(shell_.err, ProgressLabel(), shell_.columns);
  }
  return progress_.get();
}

void BatchReporter::EntryEnded(const EntryReport& report) {
  progress_.reset();
  PrintText(report);
  if (arguments_.json) {
    PrintJson(report);
  } else if (arguments_.dryRun && report.end == EntryEnd::kDone) {
    PrintPlan(report);
  }
}

void BatchReporter::ImageDone() {
  estimate_ = batch::EstimateTotal(Elapsed(), total_, finished_);
  ++finished_;
}

void BatchReporter::PrintText(const EntryReport& report) {
  const std::string& name = report.input.native();
  if (report.end == EntryEnd::kFailed) PrintError(shell_.err, About(name, report.cause));
  if (report.end == EntryEnd::kSkipped && !report.photograph) ++otherFiles_;
  if (arguments_.quiet) return;
  if (report.end == EntryEnd::kSkipped && report.photograph) {
    PrintNote(shell_.err, About(name, "skipped: " + report.cause));
  }
  for (const std::string& warning : report.warnings) {
    const auto [known, isNew] = repeated_.emplace(warning, 0);
    if (isNew) PrintWarning(shell_.err, About(name, warning));
    if (!isNew) ++known->second;
  }
}

// The result of a dry run.
void BatchReporter::PrintPlan(const EntryReport& report) const {
  std::string line = Quoted(report.input.native()) + " -> " + Quoted(report.output.native());
  if (report.profile.parameters != nullptr) {
    line += " (" + base::PrintableName(base::Utf8FromWide(report.camera)) + ", ISO " +
            std::to_string(report.profile.parameters->iso) + ")";
  }
  shell_.out << line << '\n';
}

void BatchReporter::PrintJson(const EntryReport& report) const {
  Json object;
  object["schema"] = kReportSchema;
  SetName(object, "input", report.input);
  object["status"] = StatusWord(report.end);
  if (report.end != EntryEnd::kDone) object["cause"] = report.cause;
  if (report.end == EntryEnd::kDone) SetName(object, "output", report.output);
  if (report.width > 0) SetGeometry(object, {report.width, report.height, report.components, report.bits});
  if (report.end == EntryEnd::kDone) {
    object["parameters"] = ParametersJson(report.parameters);
    object["quality"] = WordFor(kQualityChoices, static_cast<int>(facts_.quality));
    object["profile"] = ProfileJson(report);
    object["backend"] = facts_.backend;
    object["simd"] = facts_.simd;
    object["threads"] = facts_.threads;
    const EntryReport::Milliseconds& ms = report.milliseconds;
    object["ms"] =
        TimingJson({ms.load, ms.denoise, ms.sharpen, ms.save, ms.load + ms.denoise + ms.sharpen + ms.save});
  }
  if (arguments_.dryRun) object["dryRun"] = true;
  object["warnings"] = report.warnings;
  Print(shell_.out, object, JsonLayout::kOneLine);
  shell_.out.flush();
}

void BatchReporter::Summarise(const batch::BatchSummary& summary) {
  progress_.reset();
  if (arguments_.quiet) return;
  for (const auto& [warning, count] : repeated_) {
    if (count > 0) PrintWarning(shell_.err, Counted(count, "more with the warning: ") + warning);
  }
  std::string line = Counted(summary.done, arguments_.dryRun ? "to denoise" : "denoised") + ", " +
                     Counted(summary.skipped, "skipped");
  if (otherFiles_ > 0) line += " (" + Counted(otherFiles_, "of them no photographs)");
  line += ", " + Counted(summary.failed, "failed") + ", " + batch::ClockText(Elapsed());
  PrintNote(shell_.err, line);
}

}  // namespace mirellon::cli
