#include "ui/model/document_session.h"

#include <utility>

#include "ui/model/parameter_history.h"
#include "ui/model/view_texts.h"

namespace mirellon::ui {

std::optional<unsigned> DocumentSession::BeginLoad() {
  if (activity_ != Activity::kIdle && activity_ != Activity::kLoading) return std::nullopt;
  activity_ = Activity::kLoading;
  return ++loads_;
}

bool DocumentSession::FinishLoad(unsigned number, Photograph photograph) {
  if (!FailLoad(number)) return false;
  titlePath_ = photograph.path;
  photograph_ = std::move(photograph);
  result_.reset();
  unsaved_ = false;
  return true;
}

bool DocumentSession::FailLoad(unsigned number) {
  if (activity_ != Activity::kLoading || number != loads_) return false;
  activity_ = Activity::kIdle;
  return true;
}

bool DocumentSession::BeginDenoise() {
  if (activity_ != Activity::kIdle || !hasImage()) return false;
  activity_ = Activity::kDenoising;
  return true;
}

void DocumentSession::FinishDenoise(std::optional<RunResult> result) {
  activity_ = Activity::kIdle;
  if (!result) return;
  result_ = std::move(result);
  unsaved_ = true;
}

bool DocumentSession::BeginSave() {
  if (activity_ != Activity::kIdle || !hasImage()) return false;
  activity_ = Activity::kSaving;
  return true;
}

void DocumentSession::FinishSave(const std::filesystem::path& written, bool failed) {
  activity_ = Activity::kIdle;
  if (failed) return;
  unsaved_ = false;
  titlePath_ = written;
}

bool DocumentSession::BeginBatch() {
  if (activity_ != Activity::kIdle) return false;
  activity_ = Activity::kBatch;
  return true;
}

void DocumentSession::FinishBatch() {
  activity_ = Activity::kIdle;
}

bool DocumentSession::Close() {
  if (activity_ != Activity::kIdle && activity_ != Activity::kLoading) return false;
  ++loads_;
  activity_ = Activity::kIdle;
  photograph_ = {};
  result_.reset();
  unsaved_ = false;
  titlePath_.clear();
  return true;
}

bool DocumentSession::Recolour(Recoloured recoloured) {
  if (recoloured.source != photograph_.source || recoloured.result != result()) return false;
  photograph_.colours = recoloured.colours;
  photograph_.look = std::move(recoloured.look);
  photograph_.profileUse = recoloured.profileUse;
  if (result_) result_->colours = std::move(recoloured.colours);
  // Without memory for new ones, the old ones stay.
  if (recoloured.display != nullptr) photograph_.display = std::move(recoloured.display);
  if (result_ && recoloured.resultDisplay != nullptr) result_->display = std::move(recoloured.resultDisplay);
  return true;
}

const SharedPicture& DocumentSession::result() const {
  return result_ ? result_->picture : photograph_.source;
}

const SharedDisplay& DocumentSession::resultDisplay() const {
  return result_ ? result_->display : photograph_.display;
}

bool DocumentSession::ResultIsOf(const engine::DenoiseParameters& parameters, std::uint32_t quality) const {
  return result_ && result_->quality == quality && SameEffect(result_->parameters, parameters);
}

std::wstring DocumentSession::Title() const {
  return WindowTitle(titlePath_);
}

}  // namespace mirellon::ui
