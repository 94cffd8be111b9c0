// The photograph in work: what it is, what was made of it, and what is being done with it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "engine/engine_context.h"
#include "engine/noise_estimate.h"
#include "engine/parameters.h"
#include "imageio/exif_summary.h"
#include "imageio/load_image.h"
#include "ui/model/commands.h"
#include "ui/model/display_picture.h"

namespace mirellon::ui {

using SharedColours = std::shared_ptr<const ViewColours>;

// A photograph as a load brings it.
struct Photograph {
  SharedPicture source;   // as loaded, kept as it is
  SharedDisplay display;  // of the source
  imageio::ExifSummary exif;
  std::filesystem::path path;
  engine::MeasuredNoise noise;
  std::shared_ptr<const std::string> profile;  // the file's ICC profile; null: none
  DisplayLook look;                            // of the display, and of whatever is made of the source
  SharedColours colours;                       // what the look was made for
  ProfileUse profileUse = ProfileUse::kNone;
};

// What a run on the whole photograph made.
struct RunResult {
  SharedPicture picture;
  SharedDisplay display;
  engine::DenoiseParameters parameters;
  std::uint32_t quality = engine::kQualityMedium;
  SharedColours colours = nullptr;  // what the display was made for
  engine::CardFault cardFault = engine::CardFault::kNone;
};

// A photograph and its result, shown in other colours.
struct Recoloured {
  SharedPicture source;  // which they are of
  SharedPicture result;  // the photograph itself before a run
  SharedDisplay display;
  SharedDisplay resultDisplay;
  DisplayLook look;
  SharedColours colours;
  ProfileUse profileUse = ProfileUse::kNone;
};

// One activity at a time; the photograph changes only when an activity has succeeded. Begin... are refused
// (false) while another activity forbids them; a load may be begun again, which drops the one before.
class DocumentSession {
 public:
  // ---- Activities ----
  // The number that FinishLoad or FailLoad must bring; nothing while the window is busy otherwise.
  [[nodiscard]] std::optional<unsigned> BeginLoad();
  // False: dropped meanwhile, nothing has changed.
  bool FinishLoad(unsigned number, Photograph photograph);
  bool FailLoad(unsigned number);
  bool BeginDenoise();
  // Nothing: stopped or failed, the result stays what it was.
  void FinishDenoise(std::optional<RunResult> result);
  bool BeginSave();
  void FinishSave(const std::filesystem::path& written, bool failed);
  bool BeginBatch();
  void FinishBatch();
  // Refused while busy; a load on its way is dropped.
  bool Close();
  // False: of a photograph or result that is no longer the present one, nothing has changed.
  bool Recolour(Recoloured recoloured);

  // ---- State ----
  [[nodiscard]] Activity activity() const { return activity_; }
  [[nodiscard]] bool hasImage() const { return photograph_.source != nullptr; }
  [[nodiscard]] const Photograph& photograph() const { return photograph_; }
  // What is saved: the result of the last run, the photograph itself before the first one.
  [[nodiscard]] const SharedPicture& result() const;
  [[nodiscard]] const SharedDisplay& resultDisplay() const;
  [[nodiscard]] bool denoised() const { return result_.has_value(); }
  // What went wrong with the graphics card in the last run.
  [[nodiscard]] engine::CardFault cardFault() const {
    return result_ ? result_->cardFault : engine::CardFault::kNone;
  }
  // Whether everything is shown as these colours want it.
  [[nodiscard]] bool ShownIn(const SharedColours& colours) const {
    return photograph_.colours == colours && (!result_ || result_->colours == colours);
  }
  // Whether the last run's result is what these settings would make.
  [[nodiscard]] bool ResultIsOf(const engine::DenoiseParameters& parameters, std::uint32_t quality) const;
  // A result was made and not saved.
  [[nodiscard]] bool unsaved() const { return unsaved_; }
  // Of the photograph; after a save, of the file written.
  [[nodiscard]] std::wstring Title() const;

 private:
  Activity activity_ = Activity::kIdle;
  unsigned loads_ = 0;
  Photograph photograph_;
  std::optional<RunResult> result_;
  bool unsaved_ = false;
  std::filesystem::path titlePath_;
};

}  // namespace mirellon::ui
