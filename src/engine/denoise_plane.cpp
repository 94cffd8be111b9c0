#include "engine/denoise_plane.h"

#include <cmath>
#include <cstring>

#include "engine/noise_estimate.h"
#include "engine/similarity_kernel.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

int EvenUp(int side) {
  return side + side % 2;
}

// A picture of even sides: the source in its top left corner, zeros in the odd column and row.
PicBuf Padded(SBxPicBuf& source) {
  PicBuf padded(EvenUp(source.width), EvenUp(source.height), source.components, source.bitsPerComponent);
  if (padded.empty()) return padded;
  std::memset(padded->samples, 0, static_cast<std::size_t>(padded->byteSize));
  CBxPicBufAPI::CopyRect(padded, source, {0, 0}, {0, 0}, {source.width, source.height});
  return padded;
}

int RunFilter(EngineContext& context, PlaneJob job, const PlaneSettings& settings) {
  if (settings.useGpu && context.card != nullptr && context.card->HardwareUsable()) {
    job.noiseLevel = EffectiveNoiseLevel(settings.noiseLevel, settings.dynamics, *job.guide);
    if (!context.card->FilterPlane(job)) return 0;
  }
  const bool deep = job.source->bitsPerComponent != 8;
  if (settings.threads == 1) return deep ? DenoiseKernel16(context, job) : DenoiseKernel8(context, job);
  return deep ? DenoiseKernel16Threaded(context, job, settings.threads)
              : DenoiseKernel8Threaded(context, job, settings.threads);
}

// Filters one padded component; 1 when memory was refused.
int FilterComponent(EngineContext& context, PicBuf& destination, const PicBuf& source,
                    const PlaneSettings& settings) {
  PicBuf guide;
  CBxPicBufAPI::Copy(guide, source);
  if (guide.empty() || CBxPicBufAPI::ConvertBpcComp(guide, 8, 1) == 0) return 1;
  const PlaneJob job{
      &destination.record(), &source.record(),        &guide.record(),         settings.strength,
      settings.quality,      2.0 * settings.dynamics, settings.progressWindow, 0.0};
  return RunFilter(context, job, settings);
}

int FilterComponents(EngineContext& context, PicBuf& destination, PicBuf& source,
                     const PlaneSettings& settings) {
  if (source->components == 1) return FilterComponent(context, destination, source, settings);
  PicBuf from(source, 1);
  PicBuf to(source, 1);
  if (from.empty() || to.empty()) return 1;
  for (unsigned c = 0; c < static_cast<unsigned>(source->components); ++c) {
    CBxPicBufAPI::ExtractComponent(from, c, source);
    const int failed = FilterComponent(context, to, from, settings);
    if (failed != 0) return failed;
    if (context.control.Aborted()) return 0;
    CBxPicBufAPI::InsertComponent(destination, c, to);
  }
  return 0;
}

}  // namespace

double EffectiveNoiseLevel(double given, double dynamics, const SBxPicBuf& guide) {
  if (given < 0) return EstimateNoiseLevel(guide);
  return given > 0 ? given / (std::abs(2 * dynamics) / 20.0 + 1.0) : given;
}

int DenoisePlane(EngineContext& context, SBxPicBuf& destination, SBxPicBuf& source,
                 const PlaneSettings& settings) {
  PicBuf paddedSource = Padded(source);
  if (paddedSource.empty()) return 1;
  PicBuf paddedDestination(paddedSource, paddedSource->components);
  if (paddedDestination.empty()) return 1;

  // One picture's full-size buffers are held once: the padded copies take the place of the caller's.
  const SBxPicBuf geometry = destination;
  CBxPicBufAPI::DoneHeap(destination);
  CBxPicBufAPI::DoneHeap(source);
  const int failed = FilterComponents(context, paddedDestination, paddedSource, settings);
  CBxPicBufAPI::ReinitHeap(destination, geometry);
  CBxPicBufAPI::ReinitHeap(source, geometry);
  if (destination.samples == nullptr || source.samples == nullptr) return 1;

  CBxPicBufAPI::CopyRect(source, paddedSource, {0, 0}, {0, 0}, {geometry.width, geometry.height});
  if (failed != 0 || context.control.Aborted()) {
    CBxPicBufAPI::Copy(destination, source);
  } else {
    CBxPicBufAPI::CopyRect(destination, paddedDestination, {0, 0}, {0, 0}, {geometry.width, geometry.height});
  }
  return failed;
}

}  // namespace mirellon::engine
