#include "ui/model/card_examiner.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>

#include "base/child_process.h"
#include "engine/card_agreement.h"

namespace mirellon::ui {

namespace {

// A driver may compile the filter's programs for seconds, but not for longer.
constexpr std::chrono::seconds kLongestTrial{20};

}  // namespace

CardExaminer::CardExaminer(Parts parts, base::WindowServices& windows, std::ostream& out, std::ostream& err)
    : parts_(std::move(parts)), windows_(windows), out_(out), err_(err) {}

void CardExaminer::Tell(CardStatus status) {
  const std::scoped_lock lock(mutex_);
  status_ = std::move(status);
}

CardStatus CardExaminer::status() const {
  const std::scoped_lock lock(mutex_);
  return status_;
}

void CardExaminer::Open() {
  if (parts_.trial(control_) == Trial::kCrashed) {
    return Tell({CardStatus::State::kRefused, {}, "its driver crashes or does not answer", true});
  }
  if (control_.Aborted()) return;
  filter_ = std::make_unique<gpu::GpuFilter>(parts_.makeContext(), &windows_, out_, err_);
  if (!filter_->Initialise()) {
    return Tell({CardStatus::State::kRefused, filter_->info().renderer, filter_->info().refusal, false});
  }
  card_ = std::make_unique<engine::GpuCard>(*filter_);
  lent_.Lend(card_.get());
  Tell({CardStatus::State::kUsable, filter_->info().renderer, {}, false});
}

bool CardExaminer::Agrees() {
  if (card_ == nullptr) return false;
  const engine::CardAgreement agreement = engine::TestCardAgreement(*card_);
  CardStatus found = status();
  found.state = agreement.passed ? CardStatus::State::kUsable : CardStatus::State::kRefused;
  found.refusal = agreement.passed     ? ""
                  : agreement.answered ? "its results differ from the processor's"
                                       : "it failed in a trial";
  Tell(std::move(found));
  return agreement.passed;
}

void CardExaminer::Close() {
  lent_.Lend(nullptr);
  card_.reset();
  filter_.reset();
}

void TryCard() {
  std::ostringstream unread;
  gpu::GpuFilter filter(gpu::MakeGlContext(), nullptr, unread, unread);
  if (!filter.Initialise()) return;
  engine::GpuCard card(filter);
  (void)engine::TestCardAgreement(card);
}

CardExaminer::Trial TryCardApart(const base::RunControl& control) {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return CardExaminer::Trial::kNotHeld;
  const base::ChildResult result =
      base::RunChild({program.string(), kTrialArgument}, "/", &control, kLongestTrial);
  switch (result.end) {
    case base::ChildResult::End::kExited:
      return result.status == 0 ? CardExaminer::Trial::kSurvived : CardExaminer::Trial::kCrashed;
    case base::ChildResult::End::kKilled:
    case base::ChildResult::End::kOverdue:
      return CardExaminer::Trial::kCrashed;
    case base::ChildResult::End::kNotStarted:
    case base::ChildResult::End::kAborted:
    case base::ChildResult::End::kUnknown:
      break;
  }
  return CardExaminer::Trial::kNotHeld;
}

}  // namespace mirellon::ui
