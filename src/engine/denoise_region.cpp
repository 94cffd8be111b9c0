#include "engine/denoise_region.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "engine/card_jobs.h"
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

// ---- The part of a region that its result depends on ----

// What lies further from the wanted pixels than the filter reaches need not be filtered: the search window's
// half, 10, and a block and its neighbour, 4, are less.
constexpr int kReach = 16;
// From here on the filter sees the same border whatever the size.
constexpr int kLeastSide = 80;

// Of [0, length) the shortest span that the filter needs for [first, end), cut between 2 x 2 blocks.
void ShrinkSpan(int length, int& first, int& end) {
  const int from = std::max(0, first - kReach) / 2 * 2;
  const int to = std::min(length, (end + kReach + 1) / 2 * 2);
  const bool enough = to - from >= kLeastSide;
  first = enough ? from : 0;
  end = enough ? to : length;
}

// Both in coordinates of the region, `wanted` inside it.
CBxRect<int> NeededFor(const CBxRect<int>& wanted, const SBxPicBuf& region) {
  CBxRect<int> needed = wanted;
  ShrinkSpan(region.width, needed.left, needed.right);
  ShrinkSpan(region.height, needed.top, needed.bottom);
  return needed;
}

// A plane of a region, padded for the filter, and which part of the region it holds.
struct PartPlane {
  PicBuf plane;
  CBxRect<int> part{};

  // True = failed (out of memory).
  [[nodiscard]] bool Allocate(const CBxRect<int>& ofRegion, int bits) {
    part = ofRegion;
    plane = PaddedPlane(part.right - part.left, part.bottom - part.top, bits);
    return plane.empty();
  }
  // `wanted`, in coordinates of the region.
  [[nodiscard]] SBxPicBuf View(const CBxRect<int>& wanted) const {
    return ViewOf(plane, {wanted.left - part.left, wanted.top - part.top, wanted.right - part.left,
                          wanted.bottom - part.top});
  }
  // All of it but the padding.
  [[nodiscard]] SBxPicBuf View() const { return View(part); }
  // Keeps no more than `needed`. True = failed (out of memory).
  [[nodiscard]] bool Shrink(const CBxRect<int>& needed) {
    if (needed.right - needed.left == part.right - part.left &&
        needed.bottom - needed.top == part.bottom - part.top) {
      return false;
    }
    PartPlane smaller;
    if (smaller.Allocate(needed, plane->bitsPerComponent)) return true;
    SBxPicBuf to = smaller.View();
    CBxPicBufAPI::Copy(to, View(needed));
    *this = std::move(smaller);
    return false;
  }
};

// ---- Colour ----

using Planes = std::array<PartPlane, 3>;  // Y, U, V

template <typename T>
void SplitColour(const SBxPicBuf& rgb, Planes& yuv) {
  for (int y = 0; y < rgb.height; ++y) {
    const auto row = [&](std::size_t c) { return Row<T>(yuv[c].plane, y); };
    picture::ConvertRowRGBtoPlanes(Row<T>(rgb, y), row(0), row(1), row(2), rgb.width);
  }
}

// `wanted` of the planes into `rgb`, which has its size.
template <typename T>
void JoinColour(const Planes& yuv, const CBxRect<int>& wanted, SBxPicBuf& rgb) {
  const std::array<SBxPicBuf, 3> views = {yuv[0].View(wanted), yuv[1].View(wanted), yuv[2].View(wanted)};
  for (int y = 0; y < rgb.height; ++y) {
    const auto row = [&](std::size_t c) { return Row<T>(views[c], y); };
    picture::ConvertRowPlanesToRGB(row(0), row(1), row(2), Row<T>(rgb, y), rgb.width);
  }
}

bool LargePass(const DenoiseRequest& request) {
  return request.strengthChromaLarge > 1.0;
}

// Twice the given noise level, for chrominance only. `filtered`: the card did that already.
int FilterChrominance(EngineContext& context, const DenoiseRequest& request, PartPlane& chrominance,
                      bool filtered) {
  const double noiseLevel = request.noiseLevels[1] * 2.0;
  const PlaneSettings settings = SettingsOf(request, request.strengthChroma, noiseLevel);
  const int failed = filtered ? 0 : FilterPaddedPlane(context, chrominance.plane, settings);
  if (failed != 0 || context.control.Aborted() || !LargePass(request)) return failed;
  SBxPicBuf unpadded = chrominance.View();
  return DenoiseChromaLarge(context, unpadded,
                            SettingsOf(request, static_cast<int>(request.strengthChromaLarge), noiseLevel));
}

int DenoiseColour(EngineContext& context, const DenoiseRequest& request, const SBxPicBuf& input,
                  const CBxRect<int>& wanted, const CBxRect<int>& needed, SBxPicBuf& output) {
  const bool bytes = input.bitsPerComponent == 8;
  Planes yuv;
  for (PartPlane& plane : yuv) {
    if (plane.Allocate({0, 0, input.width, input.height}, input.bitsPerComponent)) return 1;
  }
  bytes ? SplitColour<std::uint8_t>(input, yuv) : SplitColour<std::uint16_t>(input, yuv);
  // The large-scale pass sees all of the region.
  for (PartPlane& plane : yuv) {
    if (!LargePass(request) && plane.Shrink(needed)) return 1;
  }
  // A card filters all three at once.
  bool filtered = false;
  if (request.useGpu) {
    const CardAnswer answer =
        FilterColourOnCard(context, {&yuv[0].plane, &yuv[1].plane, &yuv[2].plane}, request);
    if (answer == CardAnswer::kHandedBack) return kCardGaveUp;
    filtered = answer == CardAnswer::kDone;
  }
  if (yuv[0].Shrink(needed)) return 1;
  const PlaneSettings settings = SettingsOf(request, request.strength, request.noiseLevels[0]);
  int failed = filtered ? 0 : FilterPaddedPlane(context, yuv[0].plane, settings);
  for (std::size_t c = 1; c <= 2 && failed == 0 && !context.control.Aborted(); ++c) {
    failed = FilterChrominance(context, request, yuv[c], filtered);
  }
  if (failed != 0 || context.control.Aborted()) return failed;
  bytes ? JoinColour<std::uint8_t>(yuv, wanted, output) : JoinColour<std::uint16_t>(yuv, wanted, output);
  return 0;
}

// ---- Every component alike ----

int DenoiseComponents(EngineContext& context, const DenoiseRequest& request, SBxPicBuf& input,
                      const CBxRect<int>& wanted, const CBxRect<int>& needed, SBxPicBuf& output) {
  for (unsigned c = 0; c < static_cast<unsigned>(input.components); ++c) {
    PartPlane component;
    if (component.Allocate(needed, input.bitsPerComponent)) return 1;
    SBxPicBuf to = component.View();
    SBxPicBuf from = ViewOf(input, needed);
    CBxPicBufAPI::ExtractComponent(to, c, from);
    const int failed = FilterPaddedPlane(context, component.plane,
                                         SettingsOf(request, request.strength, request.noiseLevels[0]));
    if (failed != 0 || context.control.Aborted()) return failed;
    SBxPicBuf result = component.View(wanted);
    CBxPicBufAPI::InsertComponent(output, c, result);
  }
  return 0;
}

}  // namespace

int DenoiseRegion(EngineContext& context, const DenoiseRequest& request, const SBxPicBuf& source,
                  const Tile& tile, SBxPicBuf& destination) {
  SBxPicBuf input = ViewOf(source, tile.outer);
  SBxPicBuf output = ViewOf(destination, tile.inner);
  const CBxRect<int> wanted = {tile.inner.left - tile.outer.left, tile.inner.top - tile.outer.top,
                               tile.inner.right - tile.outer.left, tile.inner.bottom - tile.outer.top};
  PicBuf cleaned;
  if (request.pointArtefactMode == 1 || request.pointArtefactMode == 2) {
    cleaned = WithoutPointArtefacts(input, request.pointArtefactMode);
    if (cleaned.empty()) return 1;
    input = cleaned.record();
  }
  const bool wholeRegion = request.useGpu && context.card != nullptr && context.card->ReadsNoiseLevels();
  const CBxRect<int> needed =
      wholeRegion ? CBxRect<int>{0, 0, input.width, input.height} : NeededFor(wanted, input);
  const bool colour = request.colour && source.components == 3;
  const int failed = colour ? DenoiseColour(context, request, input, wanted, needed, output)
                            : DenoiseComponents(context, request, input, wanted, needed, output);
  if (failed == 0 && context.control.Aborted()) {
    const SBxPicBuf original = ViewOf(source, tile.inner);
    CBxPicBufAPI::Copy(output, original);
  }
  return failed;
}

}  // namespace mirellon::engine
