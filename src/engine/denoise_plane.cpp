#include "engine/denoise_plane.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "engine/card_jobs.h"
#include "engine/noise_estimate.h"
#include "engine/picture_view.h"
#include "engine/similarity_kernel.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

int EvenUp(int side) {
  return side + side % 2;
}

int FilterOnProcessor(EngineContext& context, const PlaneJob& job, const PlaneSettings& settings) {
  const bool deep = job.source->bitsPerComponent != 8;
  if (settings.threads == 1) return deep ? DenoiseKernel16(context, job) : DenoiseKernel8(context, job);
  return deep ? DenoiseKernel16Threaded(context, job, settings.threads)
              : DenoiseKernel8Threaded(context, job, settings.threads);
}

int FilterComponent(EngineContext& context, SBxPicBuf& destination, SBxPicBuf& source, unsigned component,
                    const PlaneSettings& settings) {
  PicBuf plane = PaddedPlane(source.width, source.height, source.bitsPerComponent);
  if (plane.empty()) return 1;
  SBxPicBuf inner = ViewOf(plane, {0, 0, source.width, source.height});
  CBxPicBufAPI::ExtractComponent(inner, component, source);
  const int failed = FilterPaddedPlane(context, plane, settings);
  if (failed != 0 || context.control.Aborted()) return failed;
  inner = ViewOf(plane, {0, 0, source.width, source.height});
  CBxPicBufAPI::InsertComponent(destination, component, inner);
  return 0;
}

}  // namespace

double EffectiveNoiseLevel(double given, double dynamics, const SBxPicBuf& guide) {
  if (given < 0) return EstimateNoiseLevel(guide);
  return given > 0 ? given / (std::abs(2 * dynamics) / 20.0 + 1.0) : given;
}

PicBuf PaddedPlane(int width, int height, int bits) {
  PicBuf plane(EvenUp(width), EvenUp(height), 1, bits);
  if (plane.empty()) return plane;
  const auto sampleBytes = static_cast<std::size_t>(bits) / 8;
  if (width % 2 != 0) {
    const std::size_t last = static_cast<std::size_t>(width) * sampleBytes;
    for (int y = 0; y < height; ++y) std::memset(Row<unsigned char>(plane, y) + last, 0, sampleBytes);
  }
  if (height % 2 != 0) {
    std::memset(Row<unsigned char>(plane, height), 0, static_cast<std::size_t>(plane->rowStride));
  }
  return plane;
}

PicBuf HighBytes(const SBxPicBuf& plane) {
  PicBuf bytes(plane.width, plane.height, 1, 8);
  if (bytes.empty()) return bytes;
  for (int y = 0; y < plane.height; ++y) {
    const auto* from = Row<std::uint16_t>(plane, y);
    auto* to = Row<std::uint8_t>(bytes, y);
    for (std::ptrdiff_t x = 0; x < plane.width; ++x) to[x] = static_cast<std::uint8_t>(from[x] >> 8U);
  }
  return bytes;
}

int FilterPaddedPlane(EngineContext& context, PicBuf& plane, const PlaneSettings& settings) {
  PicBuf highBytes;
  if (plane->bitsPerComponent != 8) {
    highBytes = HighBytes(plane);
    if (highBytes.empty()) return 1;
  }
  const SBxPicBuf& guide = highBytes.empty() ? plane.record() : highBytes.record();
  const PlaneJob job{
      &plane.record(),         &plane.record(),         &guide, settings.strength, settings.quality,
      2.0 * settings.dynamics, settings.progressWindow, 0.0};
  if (settings.useGpu) {
    switch (FilterPlaneOnCard(context, plane, job, settings)) {
      case CardAnswer::kDone:
        return 0;
      case CardAnswer::kHandedBack:
        return kCardGaveUp;
      case CardAnswer::kLeftToProcessor:
        break;
    }
  }
  return FilterOnProcessor(context, job, settings);
}

int DenoisePlane(EngineContext& context, SBxPicBuf& destination, SBxPicBuf& source,
                 const PlaneSettings& settings) {
  int failed = 0;
  for (unsigned c = 0; c < static_cast<unsigned>(source.components); ++c) {
    failed = FilterComponent(context, destination, source, c, settings);
    if (failed != 0 || context.control.Aborted()) break;
  }
  if (failed != 0 || context.control.Aborted()) CBxPicBufAPI::Copy(destination, source);
  return failed;
}

}  // namespace mirellon::engine
