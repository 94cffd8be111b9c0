// What the window has done beside it: pure work, no widgets.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/run_control.h"
#include "engine/engine_context.h"
#include "imageio/save_image.h"
#include "ui/model/document_session.h"
#include "ui/model/preview_queue.h"

namespace mirellon::ui {

struct LoadOutcome {
  Photograph photograph;  // source null: not loaded, `report` tells why
  imageio::LoadReport report;
};
// Decodes, reads the EXIF texts, measures the noise and prepares what the view draws from, in these colours.
// Gives up between these on a request to abort: cancelled.
[[nodiscard]] LoadOutcome LoadPhotograph(const std::filesystem::path& path, const SharedColours& colours,
                                         const base::RunControl& control);

// A run on the whole photograph. The card is used where the engine's context has one that can be.
struct RunWish {
  engine::DenoiseParameters parameters;
  std::uint32_t quality = engine::kQualityMedium;
  bool useGpu = false;
  bool fusion = false;  // with the card, the processor takes tiles, too
};

// Denoises and sharpens the whole photograph, strengths as profiles::PanelRunParameters reads them. Nothing
// when stopped or without memory.
[[nodiscard]] std::optional<RunResult> RunOnWhole(engine::EngineContext& context,
                                                  const Photograph& photograph, const RunWish& wish,
                                                  base::ProgressSink* progress);

// What RunOnWhole would leave in the wish's rectangle (of the stored picture), ready to be drawn; by the
// processor, whoever does the run. Null when stopped or without memory.
[[nodiscard]] SharedDisplay MakePreview(engine::EngineContext& context, const Photograph& photograph,
                                        const PreviewWish& wish, base::ProgressSink* progress);

// The photograph and a result of it (itself, if there is none) for other colours.
[[nodiscard]] Recoloured RecolourPhotograph(const Photograph& photograph, const SharedPicture& result,
                                            const SharedColours& colours);

struct SaveJob {
  SharedPicture picture;
  std::filesystem::path target;
  std::filesystem::path source;  // of the metadata
  int jpegQuality = 85;          // written to the settings file after a successful save
  std::filesystem::path applicationData;
};
// True = failed; `report` tells why.
[[nodiscard]] bool SavePhotograph(const SaveJob& job, const base::RunControl& control,
                                  imageio::SaveReport& report);

}  // namespace mirellon::ui
