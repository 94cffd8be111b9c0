// Finding out whether the graphics card may be used.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>

#include "base/run_control.h"
#include "base/window_services.h"
#include "engine/engine_context.h"
#include "engine/gpu_card.h"
#include "gpu/gpu_filter.h"

namespace mirellon::ui {

struct CardStatus {
  enum class State {
    kExamined,  // is being; nobody may use it yet
    kUsable,
    kRefused,
  };
  State state = State::kExamined;
  std::string name;      // the driver's for the card; empty: none was opened
  std::string refusal;   // why it is refused, an English sentence part
  bool crashed = false;  // its driver did not survive the trial
};

// The card as the engine sees it from the first moment on: not usable until it is lent.
class LentCard final : public engine::CardFilter {
 public:
  void Lend(engine::CardFilter* card) { card_ = card; }

  [[nodiscard]] bool HardwareUsable() const override {
    const engine::CardFilter* card = card_;
    return card != nullptr && card->HardwareUsable();
  }
  [[nodiscard]] int MaxTileSide() const override {
    const engine::CardFilter* card = card_;
    return card != nullptr ? card->MaxTileSide() : 0;
  }
  [[nodiscard]] bool FilterPlane(const engine::PlaneJob& job) override {
    engine::CardFilter* card = card_;
    return card == nullptr || card->FilterPlane(job);
  }
  [[nodiscard]] bool FilterColour(const engine::ColourJob& job) override {
    engine::CardFilter* card = card_;
    return card == nullptr || card->FilterColour(job);
  }

 private:
  std::atomic<engine::CardFilter*> card_ = nullptr;
};

// Holds the program's one GpuFilter. Open() and Agrees() are called on one thread, the rest from anywhere.
class CardExaminer {
 public:
  // How a trial of the driver ended.
  enum class Trial { kSurvived, kCrashed, kNotHeld };
  struct Parts {
    // Tries the driver where a crash or a hang does no harm; gives up on a request to abort.
    std::function<Trial(const base::RunControl& control)> trial;
    std::function<std::unique_ptr<gpu::GlContext>()> makeContext;
  };

  // `windows` and the streams as GpuFilter wants them.
  CardExaminer(Parts parts, base::WindowServices& windows, std::ostream& out, std::ostream& err);
  ~CardExaminer() { Close(); }
  CardExaminer(const CardExaminer&) = delete;
  CardExaminer& operator=(const CardExaminer&) = delete;

  // Opens the card, unless its driver fails in the trial: then it is refused, and this process does not touch
  // it. Once.
  void Open();
  // Whether it may be switched on: it is usable, and computes what the processor does.
  [[nodiscard]] bool Agrees();

  // Gives the card back, on any thread, once nobody uses lent() any more.
  void Close();

  [[nodiscard]] CardStatus status() const;
  [[nodiscard]] engine::CardFilter& lent() { return lent_; }
  // Makes a trial end.
  void RequestAbort() { control_.RequestAbort(); }

 private:
  void Tell(CardStatus status);

  Parts parts_;
  base::WindowServices& windows_;
  std::ostream& out_;
  std::ostream& err_;
  base::RunControl control_;
  mutable std::mutex mutex_;  // guards status_
  CardStatus status_;
  std::unique_ptr<gpu::GpuFilter> filter_;
  std::unique_ptr<engine::GpuCard> card_;
  LentCard lent_;
};

// The argument by which the program is asked for the trial alone, and what it then does: opens the card, runs
// the agreement test and returns, whatever came out of it.
inline constexpr const char* kTrialArgument = "--try-card";
void TryCard();
// A trial in another process of this program.
[[nodiscard]] CardExaminer::Trial TryCardApart(const base::RunControl& control);

}  // namespace mirellon::ui
