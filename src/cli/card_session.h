// The graphics card for as long as a command works.
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "base/window_services.h"
#include "cli/backend.h"
#include "cli/shell.h"
#include "engine/card_agreement.h"
#include "engine/gpu_card.h"
#include "gpu/gpu_filter.h"

namespace mirellon::cli {

// Opens the card when the backend needs it, tests it against the processor, and lends it to shell.engine
// until the session ends. A card that cannot be used leaves the processor to do the work.
class CardSession {
 public:
  // With `quiet`, only errors of the driver are printed.
  CardSession(Backend wanted, bool quiet, Shell& shell);
  ~CardSession();
  CardSession(const CardSession&) = delete;
  CardSession& operator=(const CardSession&) = delete;

  // What will work: the one wanted, or the processor. useGpu and fusion are those of the engine's requests.
  [[nodiscard]] Backend backend() const { return backend_; }
  [[nodiscard]] bool useGpu() const { return backend_ != Backend::kCpu; }
  [[nodiscard]] bool fusion() const { return backend_ == Backend::kFusion; }

  // Why the card wanted is not used, a sentence part; empty: it is, or none was wanted. Note() is a warning
  // that tells of it.
  [[nodiscard]] const std::string& refusal() const { return refusal_; }
  [[nodiscard]] std::string Note() const {
    return "the graphics card is not used: " + refusal_ + "; the processor does the work";
  }
  [[nodiscard]] const engine::CardAgreement& agreement() const { return agreement_; }
  // Null when no card was wanted.
  [[nodiscard]] const gpu::GpuFilter* filter() const { return filter_.get(); }

 private:
  Shell& shell_;
  Backend backend_ = Backend::kCpu;
  std::string refusal_;
  engine::CardAgreement agreement_;
  std::unique_ptr<base::WindowServices> windows_;
  std::ostream silence_{nullptr};
  std::unique_ptr<gpu::GpuFilter> filter_;
  std::unique_ptr<engine::GpuCard> card_;
};

}  // namespace mirellon::cli
