#include "engine/card_agreement.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "engine/denoise_image.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::PicBuf;
using picture::Row;

// Pseudo-random numbers of 15 bits, the same on every machine.
class Noise {
 public:
  int Next() {
    state_ = state_ * 214013U + 2531011U;
    return static_cast<int>((state_ >> 16U) & 0x7FFFU);
  }

 private:
  std::uint32_t state_ = 1;
};

void FillWithNoise(PicBuf& picture) {
  Noise noise;
  for (int y = 0; y < picture->height; ++y) {
    auto* sample = Row<std::uint8_t>(picture, y);
    for (int x = 0; x < picture->width; ++x) {
      *sample++ = static_cast<std::uint8_t>((noise.Next() & 3) + 58);
      *sample++ = static_cast<std::uint8_t>(noise.Next() % 6 + 137);
      *sample++ = static_cast<std::uint8_t>(noise.Next() % 6 - 69);  // modulo 256
    }
  }
}

// True = failed, or not by the card.
bool DenoiseOn(CardFilter* card, PicBuf& source, PicBuf& result) {
  EngineContext context;
  context.card = card;
  DenoiseRequest request;
  request.destination = &result.record();
  request.source = &source.record();
  request.useGpu = card != nullptr;
  if (DenoiseImage(context, request) != 0) return true;
  return card != nullptr && (context.cardRun.jobs == 0 || context.cardRun.fault != CardFault::kNone);
}

}  // namespace

CardAgreement TestCardAgreement(CardFilter& card) {
  PicBuf source(50, 50, 3, 8);
  PicBuf byCard(50, 50, 3, 8);
  PicBuf byProcessor(50, 50, 3, 8);
  if (source.empty() || byCard.empty() || byProcessor.empty()) return {};
  FillWithNoise(source);
  if (DenoiseOn(&card, source, byCard) || DenoiseOn(nullptr, source, byProcessor)) return {};
  CardAgreement agreement{.passed = false, .answered = true};
  for (int i = 0; i < byCard->byteSize; ++i) {
    const int difference = std::abs(byCard->samples[i] - byProcessor->samples[i]);
    agreement.largestDifference = std::max(agreement.largestDifference, difference);
  }
  agreement.passed = agreement.largestDifference <= kAgreementLimit;
  return agreement;
}

}  // namespace mirellon::engine
