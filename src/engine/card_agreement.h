// Whether a card computes what the processor does.
#pragma once

#include "engine/engine_context.h"

namespace mirellon::engine {

struct CardAgreement {
  bool passed = false;
  bool answered = false;      // the card did the work, not the processor behind it
  int largestDifference = 0;  // of any sample, if it answered
};

// The largest difference that still passes.
inline constexpr int kAgreementLimit = 5;

// Denoises a small noisy colour picture, 50 x 50, on both sides. Run whenever the card is to be switched on.
[[nodiscard]] CardAgreement TestCardAgreement(CardFilter& card);

}  // namespace mirellon::engine
