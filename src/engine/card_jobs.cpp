#include "engine/card_jobs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "engine/card_checks.h"

namespace mirellon::engine {

namespace {

using picture::PicBuf;
using picture::SBxPicBuf;

bool CardReady(const EngineContext& context) {
  return context.card != nullptr && context.card->HardwareUsable() &&
         context.cardRun.fault == CardFault::kNone;
}

CardAnswer GiveUp(EngineContext& context, CardFault fault) {
  context.cardRun.fault = fault;
  return context.cardRun.processorIsElsewhere ? CardAnswer::kHandedBack : CardAnswer::kLeftToProcessor;
}

// What is wrong with a result, if anything. Samples are compared until that has worked once.
CardFault Examine(EngineContext& context, const SBxPicBuf& source, const SBxPicBuf& result,
                  const PlaneSettings& settings, bool sampling) {
  if (!PlausibleAverage(source, result)) return CardFault::kImplausible;
  if (!sampling) return CardFault::kNone;
  const SampleComparison comparison = CompareSamples(context, source, result, settings);
  if (!comparison.known) return CardFault::kNone;
  CardRun& run = context.cardRun;
  run.sampled = true;
  run.sampleDifference = std::max(run.sampleDifference, comparison.difference);
  return comparison.Agrees() ? CardFault::kNone : CardFault::kDisagrees;
}

}  // namespace

CardAnswer FilterPlaneOnCard(EngineContext& context, PicBuf& plane, const PlaneJob& job,
                             const PlaneSettings& settings) {
  if (!CardReady(context)) return GiveUp(context, context.cardRun.fault);
  PicBuf result(plane, 1);
  if (result.empty()) return GiveUp(context, CardFault::kFailed);
  PlaneJob apart = job;
  apart.destination = &result.record();
  if (context.card->ReadsNoiseLevels()) {
    apart.noiseLevel = EffectiveNoiseLevel(settings.noiseLevel, settings.dynamics, *job.guide);
  }
  apart.control = &context.control;
  if (context.card->FilterPlane(apart)) return GiveUp(context, CardFault::kFailed);
  if (context.control.Aborted()) return CardAnswer::kDone;
  const CardFault fault = Examine(context, plane, result, settings, !context.cardRun.sampled);
  if (fault != CardFault::kNone) return GiveUp(context, fault);
  ++context.cardRun.jobs;
  plane = std::move(result);
  return CardAnswer::kDone;
}

CardAnswer FilterColourOnCard(EngineContext& context, const std::array<PicBuf*, 3>& planes,
                              const DenoiseRequest& request) {
  if (!CardReady(context)) return GiveUp(context, context.cardRun.fault);
  std::array<PicBuf, 3> results;
  std::array<PicBuf, 3> guides;
  ColourJob job{.strength = request.strength,
                .strengthChroma = request.strengthChroma,
                .quality = request.quality,
                .dynamicity = 2.0 * request.dynamics,
                .progressWindow = request.progressWindow,
                .control = &context.control};
  for (std::size_t c = 0; c < 3; ++c) {
    const PicBuf& plane = *planes[c];
    const bool deep = plane->bitsPerComponent != 8;
    results[c] = PicBuf(plane, 1);
    if (deep) guides[c] = HighBytes(plane);
    if (results[c].empty() || (deep && guides[c].empty())) return GiveUp(context, CardFault::kFailed);
    job.destination[c] = &results[c].record();
    job.source[c] = &plane.record();
    job.guide[c] = deep ? &guides[c].record() : &plane.record();
  }
  if (context.card->ReadsNoiseLevels()) {
    job.noiseLevel = EffectiveNoiseLevel(request.noiseLevels[0], request.dynamics, *job.guide[0]);
    job.noiseLevelChroma = EffectiveNoiseLevel(request.noiseLevels[1] * 2.0, request.dynamics, *job.guide[1]);
  }
  if (context.card->FilterColour(job)) return GiveUp(context, CardFault::kFailed);
  if (context.control.Aborted()) return CardAnswer::kDone;
  const bool sampling = !context.cardRun.sampled;
  for (std::size_t c = 0; c < 3; ++c) {
    const double strength = c == 0 ? request.strength : request.strengthChroma;
    const PlaneSettings settings = {strength, request.quality, request.dynamics, nullptr,
                                    -1.0,     false,           request.threads};
    const CardFault fault = Examine(context, *planes[c], results[c], settings, sampling);
    if (fault != CardFault::kNone) return GiveUp(context, fault);
  }
  ++context.cardRun.jobs;
  for (std::size_t c = 0; c < 3; ++c) *planes[c] = std::move(results[c]);
  return CardAnswer::kDone;
}

std::string CardNote(const CardRun& run) {
  switch (run.fault) {
    case CardFault::kNone:
      return {};
    case CardFault::kFailed:
      return "the graphics card failed; the processor did its work";
    case CardFault::kImplausible:
      return "the graphics card returned values that cannot be; the processor did its work";
    case CardFault::kDisagrees:
      return "the graphics card disagrees with the processor, which did its work";
  }
  return {};
}

}  // namespace mirellon::engine
