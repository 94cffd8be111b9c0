#include "engine/denoise_region.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/chroma_large.h"
#include "engine/denoise_plane.h"
#include "engine/picture_view.h"
#include "engine/point_artefacts.h"
#include "picture/colour_convert.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::PicBuf;
using picture::Row;
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

// The part of a padded plane that is picture.
SBxPicBuf Unpadded(const PicBuf& plane, const SBxPicBuf& picture) {
  return ViewOf(plane, {0, 0, picture.width, picture.height});
}

// ---- Colour ----

using Planes = std::array<PicBuf, 3>;  // Y, U, V, padded

template <typename T>
void SplitColour(const SBxPicBuf& rgb, Planes& yuv) {
  for (int y = 0; y < rgb.height; ++y) {
    picture::ConvertRowRGBtoPlanes(Row<T>(rgb, y), Row<T>(yuv[0], y), Row<T>(yuv[1], y), Row<T>(yuv[2], y),
                                   rgb.width);
  }
}

// `part` of the planes into `rgb`, which has its size.
template <typename T>
void JoinColour(const Planes& yuv, const CBxRect<int>& part, SBxPicBuf& rgb) {
  for (int y = 0; y < rgb.height; ++y) {
    const auto row = [&](std::size_t c) { return Row<T>(yuv[c], part.top + y) + part.left; };
    picture::ConvertRowPlanesToRGB(row(0), row(1), row(2), Row<T>(rgb, y), rgb.width);
  }
}

// Twice the given noise level, for chrominance only.
int FilterChrominance(EngineContext& context, const DenoiseRequest& request, const SBxPicBuf& picture,
                      PicBuf& plane) {
  const double noiseLevel = request.noiseLevels[1] * 2.0;
  const int failed =
      FilterPaddedPlane(context, plane, SettingsOf(request, request.strengthChroma, noiseLevel));
  if (failed != 0 || context.control.Aborted() || !(request.strengthChromaLarge > 1.0)) return failed;
  SBxPicBuf unpadded = Unpadded(plane, picture);
  return DenoiseChromaLarge(context, unpadded,
                            SettingsOf(request, static_cast<int>(request.strengthChromaLarge), noiseLevel));
}

int DenoiseColour(EngineContext& context, const DenoiseRequest& request, const SBxPicBuf& input,
                  const CBxRect<int>& part, SBxPicBuf& output) {
  const bool bytes = input.bitsPerComponent == 8;
  Planes yuv;
  for (PicBuf& plane : yuv) {
    plane = PaddedPlane(input.width, input.height, input.bitsPerComponent);
    if (plane.empty()) return 1;
  }
  bytes ? SplitColour<std::uint8_t>(input, yuv) : SplitColour<std::uint16_t>(input, yuv);
  int failed =
      FilterPaddedPlane(context, yuv[0], SettingsOf(request, request.strength, request.noiseLevels[0]));
  for (std::size_t c = 1; c <= 2 && failed == 0 && !context.control.Aborted(); ++c) {
    failed = FilterChrominance(context, request, input, yuv[c]);
  }
  if (failed != 0 || context.control.Aborted()) return failed;
  bytes ? JoinColour<std::uint8_t>(yuv, part, output) : JoinColour<std::uint16_t>(yuv, part, output);
  return 0;
}

// ---- Every component alike ----

int DenoiseComponents(EngineContext& context, const DenoiseRequest& request, SBxPicBuf& input,
                      const CBxRect<int>& part, SBxPicBuf& output) {
  for (unsigned c = 0; c < static_cast<unsigned>(input.components); ++c) {
    PicBuf plane = PaddedPlane(input.width, input.height, input.bitsPerComponent);
    if (plane.empty()) return 1;
    SBxPicBuf unpadded = Unpadded(plane, input);
    CBxPicBufAPI::ExtractComponent(unpadded, c, input);
    const int failed =
        FilterPaddedPlane(context, plane, SettingsOf(request, request.strength, request.noiseLevels[0]));
    if (failed != 0 || context.control.Aborted()) return failed;
    SBxPicBuf wanted = ViewOf(plane, part);
    CBxPicBufAPI::InsertComponent(output, c, wanted);
  }
  return 0;
}

}  // namespace

int DenoiseRegion(EngineContext& context, const DenoiseRequest& request, const SBxPicBuf& source,
                  const Tile& tile, SBxPicBuf& destination) {
  SBxPicBuf input = ViewOf(source, tile.outer);
  SBxPicBuf output = ViewOf(destination, tile.inner);
  const CBxRect<int> part = {tile.inner.left - tile.outer.left, tile.inner.top - tile.outer.top,
                             tile.inner.right - tile.outer.left, tile.inner.bottom - tile.outer.top};
  PicBuf cleaned;
  if (request.pointArtefactMode == 1 || request.pointArtefactMode == 2) {
    cleaned = WithoutPointArtefacts(input, request.pointArtefactMode);
    if (cleaned.empty()) return 1;
    input = cleaned.record();
  }
  const bool colour = request.colour && source.components == 3;
  const int failed = colour ? DenoiseColour(context, request, input, part, output)
                            : DenoiseComponents(context, request, input, part, output);
  if (failed == 0 && context.control.Aborted()) {
    const SBxPicBuf original = ViewOf(source, tile.inner);
    CBxPicBufAPI::Copy(output, original);
  }
  return failed;
}

}  // namespace mirellon::engine
