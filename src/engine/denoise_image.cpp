#include "engine/denoise_image.h"

#include "engine/chroma_large.h"
#include "engine/denoise_plane.h"
#include "engine/point_artefacts.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// A copy of `source` with the point artefacts of every component reduced; empty when memory was refused.
PicBuf WithoutPointArtefacts(SBxPicBuf& source, int mode) {
  PicBuf cleaned;
  CBxPicBufAPI::Copy(cleaned, source);
  if (source.components == 1) {
    if (!cleaned.empty()) RemovePointArtefacts(cleaned, source, mode);
    return cleaned;
  }
  PicBuf plane(source, 1);
  PicBuf filtered(source, 1);
  if (cleaned.empty() || plane.empty() || filtered.empty()) return {};
  for (unsigned c = 0; c < static_cast<unsigned>(source.components); ++c) {
    CBxPicBufAPI::ExtractComponent(plane, c, source);
    CBxPicBufAPI::Copy(filtered, plane);
    RemovePointArtefacts(filtered, plane, mode);
    CBxPicBufAPI::InsertComponent(cleaned, c, filtered);
  }
  return cleaned;
}

PlaneSettings SettingsOf(const DenoiseRequest& request, double strength, double noiseLevel) {
  return {strength,   request.quality, request.dynamics, request.progressWindow,
          noiseLevel, request.useGpu,  request.threads};
}

int FilterLuminance(EngineContext& context, const DenoiseRequest& request, PicBuf& yuv, PicBuf& from,
                    PicBuf& to) {
  CBxPicBufAPI::ExtractComponent(from, 0, yuv);
  const int failed =
      DenoisePlane(context, to, from, SettingsOf(request, request.strength, request.noiseLevels[0]));
  if (failed == 0) CBxPicBufAPI::InsertComponent(yuv, 0, to);
  return failed;
}

int FilterChrominance(EngineContext& context, const DenoiseRequest& request, PicBuf& yuv, unsigned component,
                      PicBuf& from, PicBuf& to) {
  // Twice the given level, for chrominance only.
  const double noiseLevel = request.noiseLevels[1] * 2.0;
  CBxPicBufAPI::ExtractComponent(from, component, yuv);
  int failed = DenoisePlane(context, to, from, SettingsOf(request, request.strengthChroma, noiseLevel));
  if (failed == 0 && request.strengthChromaLarge > 1.0) {
    const PlaneSettings settings =
        SettingsOf(request, static_cast<int>(request.strengthChromaLarge), noiseLevel);
    failed = DenoiseChromaLarge(context, to, settings);
  }
  if (failed == 0) CBxPicBufAPI::InsertComponent(yuv, component, to);
  return failed;
}

int DenoiseColour(EngineContext& context, const DenoiseRequest& request, SBxPicBuf& input) {
  PicBuf yuv(input, input.components);
  if (yuv.empty() || CBxPicBufAPI::ConvertRGBtoYUV(yuv, input) == 0) return 1;
  PicBuf from(input, 1);
  PicBuf to(input, 1);
  if (from.empty() || to.empty()) return 1;
  int failed = FilterLuminance(context, request, yuv, from, to);
  for (unsigned component = 1; component <= 2 && failed == 0; ++component) {
    failed = FilterChrominance(context, request, yuv, component, from, to);
  }
  if (failed == 0) CBxPicBufAPI::ConvertYUVtoRGB(*request.destination, yuv);
  return failed;
}

}  // namespace

int DenoiseImage(EngineContext& context, const DenoiseRequest& request) {
  SBxPicBuf& source = *request.source;
  CBxPicBufAPI::ReinitHeap(*request.destination, source);
  if (request.destination->samples == nullptr) return 1;

  const bool reducePoints = request.pointArtefactMode == 1 || request.pointArtefactMode == 2;
  PicBuf cleaned;
  if (reducePoints) {
    cleaned = WithoutPointArtefacts(source, request.pointArtefactMode);
    if (cleaned.empty()) return 1;
  }
  SBxPicBuf& input = reducePoints ? cleaned.record() : source;
  int failed = 0;
  if (!request.colour || source.components == 1) {
    failed = DenoisePlane(context, *request.destination, input,
                          SettingsOf(request, request.strength, request.noiseLevels[0]));
  } else {
    failed = DenoiseColour(context, request, input);
  }
  // Medians and the way to YUV and back change a little; an aborted picture comes back as it was.
  if (failed == 0 && context.control.Aborted()) CBxPicBufAPI::Copy(*request.destination, source);
  return failed;
}

}  // namespace mirellon::engine
