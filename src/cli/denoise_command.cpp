#include "cli/denoise_command.h"

#include <array>
#include <cstdio>
#include <memory>
#include <system_error>

#include "base/stopwatch.h"
#include "cli/arguments.h"
#include "cli/card_session.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/profile_support.h"
#include "cli/report.h"
#include "cli/terminal_progress.h"
#include "engine/card_jobs.h"
#include "engine/detail_pyramid.h"
#include "engine/noise_estimate.h"
#include "engine/simd_target.h"
#include "engine/whole_picture.h"
#include "imageio/save_image.h"

namespace mirellon::cli {

namespace {

// What speaks against OUTPUT as it was given, even if the result would come under another name; null:
// nothing.
const char* WhyNotTarget(const std::filesystem::path& output, const std::filesystem::path& input) {
  std::error_code ignored;
  if (!output.has_filename() || std::filesystem::is_directory(output, ignored)) return "a folder, not a file";
  return std::filesystem::equivalent(output, input, ignored) ? "it is the photograph itself" : nullptr;
}

// One photograph on its way from file to file. The steps are called in their order; each prints what goes
// wrong and then ends the run with the status it returns.
class DenoiseRun {
 public:
  DenoiseRun(const DenoiseArguments& arguments, Shell& shell) : arguments_(arguments), shell_(shell) {
    report_.input = arguments.input;
    report_.output = imageio::WrittenName(arguments.output);
    report_.quality = arguments.quality;
    report_.threads = arguments.threads.value_or(engine::CountProcessors());
    report_.simd = engine::SimdTargetName();
    saving_.jpegQuality = arguments.jpegQuality;
    saving_.pngCompression = arguments.pngCompression;
    saving_.metadata = arguments.metadata;
    saving_.overwrite = arguments.overwrite;
    saving_.applicationData = shell.applicationData;
    saving_.control = &shell.engine.control;
  }

  ExitStatus Run() {
    using Step = ExitStatus (DenoiseRun::*)();
    for (const Step step : {&DenoiseRun::OpenStore, &DenoiseRun::Load, &DenoiseRun::CheckTarget,
                            &DenoiseRun::ChooseSet, &DenoiseRun::Denoise, &DenoiseRun::Sharpen}) {
      const ExitStatus status = (this->*step)();
      if (status != ExitStatus::kDone) return status;
      if (shell_.engine.control.Aborted()) return Interrupted(arguments_.input, shell_);
    }
    const ExitStatus status = Save();
    if (status != ExitStatus::kDone) return status;
    report_.milliseconds.total = total_.Lap();
    Report();
    return ExitStatus::kDone;
  }

 private:
  using Kind = ProfileRequest::Kind;

  // A set asked for by name is looked up before any work, too.
  ExitStatus OpenStore() {
    const ProfileRequest& request = arguments_.profile;
    if (request.kind == Kind::kNone) return ExitStatus::kDone;
    std::vector<std::string> warnings;
    const ExitStatus status =
        OpenProfiles(store_, arguments_.profiles, profiles::FirstRun::kSave, shell_, warnings);
    if (status != ExitStatus::kDone) return status;
    for (const std::string& warning : warnings) Warn(warning);
    return request.kind == Kind::kNamed ? FindNamedSet(request) : ExitStatus::kDone;
  }

  ExitStatus FindNamedSet(const ProfileRequest& request) {
    const std::optional<std::uint32_t> camera = FindStoredCamera(store_, request.camera);
    if (!camera) return RefuseProfile(NoSuchCamera(store_, request.camera));
    const std::optional<std::uint32_t> entry = FindStoredEntry(store_, *camera, request.iso);
    if (!entry) return RefuseProfile(NoSuchSpeed(store_, *camera, request.iso));
    report_.parameters = *store_.Entry(*camera, *entry);
    report_.profile = {store_.cameras()[*camera].name, request.iso, "given"};
    return ExitStatus::kDone;
  }

  ExitStatus RefuseProfile(const std::string& why) {
    PrintError(shell_.err, "--profile: " + why);
    return ExitStatus::kUsage;
  }

  ExitStatus Load() {
    step_.Lap();
    imageio::LoadReport loaded;
    const ExitStatus status = LoadInput(arguments_.input, document_, loaded, shell_);
    if (!loaded.warning.empty()) Warn(About(arguments_.input.native(), loaded.warning));
    report_.geometry = Geometry::Of(document_.source);
    report_.milliseconds.load = step_.Lap();
    return status;
  }

  // Before the work, not after it.
  ExitStatus CheckTarget() {
    if (const char* cause = WhyNotTarget(arguments_.output, arguments_.input); cause != nullptr) {
      PrintError(shell_.err, About(arguments_.output.native(), cause));
      return ExitStatus::kOutput;
    }
    const imageio::SaveReport checked =
        imageio::CheckTarget(document_.source, arguments_.output, arguments_.input, saving_);
    if (checked.status != imageio::SaveStatus::kSaved) return SaveFailed(checked);
    if (report_.output != arguments_.output) {
      Warn(About(arguments_.output.native(), "this format is not written; the result is the TIFF file " +
                                                 Quoted(report_.output.native())));
    }
    return ExitStatus::kDone;
  }

  ExitStatus ChooseSet() {
    const Kind kind = arguments_.profile.kind;
    if (kind == Kind::kAuto || kind == Kind::kBatch) {
      profiles::ProfileChoice choice;
      if (kind == Kind::kBatch) {
        choice = profiles::SelectProfileForBatch(store_, IdentityOf(document_.exif));
      } else if (ChooseAsPanel(choice)) {
        return NoMemory(arguments_.input, shell_);
      }
      report_.profile = NamedChoice(store_, choice);
      if (choice.parameters != nullptr) {
        report_.parameters = *choice.parameters;
      } else {
        Warn(About(store_.paths().userFile.native(), "holds no set to start from; the defaults are used"));
      }
    }
    arguments_.given.Replace(report_.parameters);
    return ExitStatus::kDone;
  }

  // True when memory was refused. The noise is measured only when it decides.
  bool ChooseAsPanel(profiles::ProfileChoice& choice) {
    store_.NormalizeNames();
    const profiles::PhotoIdentity photo = IdentityOf(document_.exif);
    choice = profiles::SelectProfileForImage(store_, photo, 0.0, 0.0);
    if (choice.rule == profiles::ProfileRule::kExact) return false;
    const engine::MeasuredNoise noise = engine::MeasureNoise(document_.source);
    choice = profiles::SelectProfileForImage(store_, photo, noise.luminance, noise.chrominance);
    return noise.failed;
  }

  ExitStatus Denoise() {
    const CardSession session(arguments_.backend, arguments_.quiet, shell_);
    if (!session.refusal().empty()) Warn(session.Note());
    report_.backend = BackendName(session.backend());
    step_.Lap();
    const std::unique_ptr<TerminalProgress> progress = MakeProgress();
    engine::DenoiseRequest request;
    request.destination = &document_.result.record();
    request.source = &document_.source.record();
    request.Use(report_.parameters);
    request.quality = arguments_.quality;
    request.progressWindow = progress.get();
    request.threads = report_.threads;
    shell_.engine.processorCount = report_.threads;
    request.useGpu = session.useGpu();
    const bool complete = engine::DenoiseWholePicture(shell_.engine, request, session.fusion());
    report_.milliseconds.denoise = step_.Lap();
    const std::string note = engine::CardNote(shell_.engine.cardRun);
    if (!note.empty()) Warn(About(arguments_.input.native(), note));
    if (complete || shell_.engine.control.Aborted()) return ExitStatus::kDone;
    return NoMemory(arguments_.input, shell_);
  }

  ExitStatus Sharpen() {
    step_.Lap();
    const engine::DenoiseParameters& parameters = report_.parameters;
    const bool failed = engine::SharpenPicture(document_.result, parameters.m_dSharp1, parameters.m_dSharp2,
                                               parameters.m_dSharp3, report_.threads);
    report_.milliseconds.sharpen = step_.Lap();
    return failed ? NoMemory(arguments_.input, shell_) : ExitStatus::kDone;
  }

  ExitStatus Save() {
    document_.source = picture::PicBuf();  // its memory is wanted for encoding
    step_.Lap();
    imageio::SaveReport saved;
    std::filesystem::path target = arguments_.output;
    const bool failed = imageio::SaveImageAs(document_, target, saving_, &saved);
    report_.milliseconds.save = step_.Lap();
    if (failed) return SaveFailed(saved);
    report_.output = saved.written;
    for (const std::string& warning : saved.warnings) Warn(About(saved.written.native(), warning));
    return ExitStatus::kDone;
  }

  void Report() {
    if (ShowsProgress()) {
      std::array<char, 48> text{};
      std::snprintf(text.data(), text.size(), "written, %.1f s", report_.milliseconds.total / 1000.0);
      PrintNote(shell_.err, About(report_.output.native(), text.data()));
    }
    if (arguments_.json) PrintJson(shell_.out, report_);
  }

  [[nodiscard]] bool ShowsProgress() const {
    return cli::ShowsProgress(arguments_.progress, arguments_.quiet, shell_);
  }

  [[nodiscard]] std::unique_ptr<TerminalProgress> MakeProgress() const {
    if (!ShowsProgress()) return nullptr;
    return std::make_unique<TerminalProgress>(shell_.err, "denoising", shell_.columns);
  }

  void Warn(const std::string& warning) {
    report_.warnings.push_back(warning);
    if (!arguments_.quiet) PrintWarning(shell_.err, warning);
  }

  ExitStatus SaveFailed(const imageio::SaveReport& saved) {
    using imageio::SaveStatus;
    if (saved.status == SaveStatus::kAborted) return Interrupted(arguments_.input, shell_);
    const bool replaceable = saved.status == SaveStatus::kTargetExists;
    PrintError(shell_.err, About(report_.output.native(),
                                 saved.cause + (replaceable ? "; --overwrite replaces it" : "")));
    if (saved.status == SaveStatus::kOutOfMemory) return ExitStatus::kMemory;
    return saved.status == SaveStatus::kNoPicture ? ExitStatus::kFailed : ExitStatus::kOutput;
  }

  const DenoiseArguments& arguments_;
  Shell& shell_;
  profiles::NoiseProfileStore store_;
  imageio::Document document_;
  imageio::SaveOptions saving_;
  DenoiseReport report_;
  base::Stopwatch total_;
  base::Stopwatch step_;
};

}  // namespace

ExitStatus RunDenoise(std::span<const char* const> args, Shell& shell) {
  DenoiseArguments arguments;
  const std::optional<ExitStatus> concluded = Conclude(ParseDenoiseArguments(args, arguments), shell);
  if (concluded) return *concluded;
  return DenoiseRun(arguments, shell).Run();
}

}  // namespace mirellon::cli
