#include "ui/model/photo_jobs.h"

#include <memory>
#include <utility>

#include "engine/denoise_preview.h"
#include "engine/detail_pyramid.h"
#include "engine/whole_picture.h"
#include "profiles/slider_math.h"
#include "settings/app_settings.h"

namespace mirellon::ui {

namespace {

using picture::PicBuf;

engine::DenoiseRequest RequestOf(const engine::DenoiseParameters& parameters, std::uint32_t quality,
                                 base::ProgressSink* progress) {
  engine::DenoiseRequest request;
  request.Use(parameters);
  request.quality = quality;
  request.progressWindow = progress;
  return request;
}

// The look's colours for a photograph's own profile, and what became of that.
void FindColours(Photograph& photograph, const picture::SBxPicBuf& source, const SharedColours& colours) {
  photograph.colours = colours;
  if (photograph.profile == nullptr) return;
  ColourChoice choice =
      MakeColourTransform(*photograph.profile, source.components, source.bitsPerComponent, *colours);
  photograph.look.colours = std::move(choice.transform);
  photograph.profileUse = choice.use;
}

}  // namespace

LoadOutcome LoadPhotograph(const std::filesystem::path& path, const SharedColours& colours,
                           const base::RunControl& control) {
  LoadOutcome outcome;
  const auto cancelled = [&] {
    if (control.Aborted()) outcome.report.status = imageio::LoadStatus::kCancelled;
    return control.Aborted();
  };
  imageio::Document document;
  std::filesystem::path file = path;
  if (cancelled() || imageio::LoadImageFile(document, file, true, &outcome.report)) return outcome;
  Photograph& photograph = outcome.photograph;
  if (cancelled()) return outcome;
  photograph.noise = engine::MeasureNoise(document.source);
  if (cancelled()) return outcome;
  if (!document.profile.empty()) {
    photograph.profile = std::make_shared<const std::string>(std::move(document.profile));
  }
  photograph.look.orientation = OrientationOf(document.orientation);
  FindColours(photograph, document.source, colours);
  if (document.profileRefused && colours->managed) photograph.profileUse = ProfileUse::kUnusable;
  photograph.display = MakeDisplay(document.source, photograph.look);
  if (photograph.noise.failed || photograph.display == nullptr) {
    outcome.report.status = imageio::LoadStatus::kOutOfMemory;
    return outcome;
  }
  photograph.exif = std::move(document.exif);
  photograph.path = std::move(document.currentPath);
  photograph.source = std::make_shared<PicBuf>(std::move(document.source));
  return outcome;
}

std::optional<RunResult> RunOnWhole(engine::EngineContext& context, const Photograph& photograph,
                                    const RunWish& wish, base::ProgressSink* progress) {
  // A run may release and re-create its source's storage meanwhile, and others read the photograph.
  PicBuf copy;
  picture::CBxPicBufAPI::Copy(copy, *photograph.source);
  auto picture = std::make_shared<PicBuf>();
  if (copy.empty()) return std::nullopt;
  const engine::DenoiseParameters used = profiles::PanelRunParameters(wish.parameters);
  engine::DenoiseRequest request = RequestOf(used, wish.quality, progress);
  request.source = &copy.record();
  request.destination = &picture->record();
  request.useGpu = wish.useGpu;
  if (!engine::DenoiseWholePicture(context, request, wish.fusion)) return std::nullopt;
  copy = PicBuf();
  if (engine::SharpenPicture(*picture, used.m_dSharp1, used.m_dSharp2, used.m_dSharp3)) return std::nullopt;
  SharedDisplay display = MakeDisplay(*picture, photograph.look);
  if (display == nullptr || context.control.Aborted()) return std::nullopt;
  return RunResult{std::move(picture), std::move(display), wish.parameters,
                   wish.quality,       photograph.colours, context.cardRun.fault};
}

SharedDisplay MakePreview(engine::EngineContext& context, const Photograph& photograph,
                          const PreviewWish& wish, base::ProgressSink* progress) {
  const engine::PreviewRequest request{&photograph.source->record(), wish.rect,
                                       profiles::PanelRunParameters(wish.parameters), wish.quality, progress};
  PicBuf result;
  if (engine::DenoisePreview(context, request, result)) return nullptr;
  return MakeDisplay(result, photograph.look);
}

Recoloured RecolourPhotograph(const Photograph& photograph, const SharedPicture& result,
                              const SharedColours& colours) {
  Photograph changed = photograph;
  FindColours(changed, *photograph.source, colours);
  Recoloured recoloured{photograph.source, result,  photograph.display, nullptr,
                        changed.look,      colours, changed.profileUse};
  if (photograph.profile == nullptr) return recoloured;  // the same in all colours
  recoloured.display = MakeDisplay(*photograph.source, changed.look);
  if (result != photograph.source) recoloured.resultDisplay = MakeDisplay(*result, changed.look);
  return recoloured;
}

bool SavePhotograph(const SaveJob& job, const base::RunControl& control, imageio::SaveReport& report) {
  imageio::SaveOptions options;
  options.control = &control;
  if (imageio::WriteImageFile(*job.picture, job.target, job.source, job.jpegQuality, options, &report)) {
    return true;
  }
  if (settings::WriteJpegQuality(job.applicationData, job.jpegQuality)) {
    report.warnings.emplace_back(imageio::kQualityNotStored);
  }
  return false;
}

}  // namespace mirellon::ui
