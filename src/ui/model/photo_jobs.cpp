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

}  // namespace

LoadOutcome LoadPhotograph(const std::filesystem::path& path) {
  LoadOutcome outcome;
  imageio::Document document;
  std::filesystem::path file = path;
  if (imageio::LoadImageFile(document, file, true, &outcome.report)) return outcome;
  Photograph& photograph = outcome.photograph;
  photograph.noise = engine::MeasureNoise(document.source);
  photograph.display = MakeDisplay(document.source);
  if (photograph.noise.failed || photograph.display == nullptr) {
    outcome.report.status = imageio::LoadStatus::kOutOfMemory;
    outcome.report.cause = "not enough memory";
    return outcome;
  }
  photograph.exif = std::move(document.exif);
  photograph.path = std::move(document.currentPath);
  photograph.source = std::make_shared<PicBuf>(std::move(document.source));
  return outcome;
}

std::optional<RunResult> RunOnWhole(engine::EngineContext& context, const SharedPicture& source,
                                    const engine::DenoiseParameters& parameters, std::uint32_t quality,
                                    base::ProgressSink* progress) {
  // A run may release and re-create its source's storage meanwhile, and others read the photograph.
  PicBuf copy;
  picture::CBxPicBufAPI::Copy(copy, *source);
  auto picture = std::make_shared<PicBuf>();
  if (copy.empty()) return std::nullopt;
  const engine::DenoiseParameters used = profiles::RunParameters(parameters);
  engine::DenoiseRequest request = RequestOf(used, quality, progress);
  request.source = &copy.record();
  request.destination = &picture->record();
  if (!engine::DenoiseWholePicture(context, request, false)) return std::nullopt;
  copy = PicBuf();
  if (engine::SharpenPicture(*picture, used.m_dSharp1, used.m_dSharp2, used.m_dSharp3)) return std::nullopt;
  SharedDisplay display = MakeDisplay(*picture);
  if (display == nullptr || context.control.Aborted()) return std::nullopt;
  return RunResult{std::move(picture), std::move(display), parameters, quality};
}

SharedDisplay MakePreview(engine::EngineContext& context, const SharedPicture& source,
                          const PreviewWish& wish, base::ProgressSink* progress) {
  const engine::PreviewRequest request{&source->record(), wish.rect, profiles::RunParameters(wish.parameters),
                                       wish.quality, progress};
  PicBuf result;
  if (engine::DenoisePreview(context, request, result)) return nullptr;
  return MakeDisplay(result);
}

bool SavePhotograph(const SaveJob& job, const base::RunControl& control, imageio::SaveReport& report) {
  imageio::SaveOptions options;
  options.control = &control;
  if (imageio::WriteImageFile(*job.picture, job.target, job.source, job.jpegQuality, options, &report)) {
    return true;
  }
  if (settings::WriteJpegQuality(job.applicationData, job.jpegQuality)) {
    report.warnings.emplace_back("the JPEG quality could not be stored in the settings file");
  }
  return false;
}

}  // namespace mirellon::ui
