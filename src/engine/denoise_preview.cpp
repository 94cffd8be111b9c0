#include "engine/denoise_preview.h"

#include <algorithm>
#include <new>
#include <vector>

#include "engine/denoise_image.h"
#include "engine/detail_pyramid.h"
#include "engine/tile_plan.h"
#include "engine/whole_picture.h"

namespace mirellon::engine {

namespace {

using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::CBxSize;
using picture::PicBuf;
using picture::SBxPicBuf;

using Rect = CBxRect<int>;

// Pixels at 2x2 blocks on a pyramid level of a quarter of the size must fall where they do in the whole.
constexpr int kAlignment = 8;
// How far the filters reach: medians 3, one plane 13, the large-scale pass 13 of its pixels (52) and its
// pyramid 12. The sharpening's pyramid reaches 28.
constexpr int kFilterMargin = 96;
constexpr int kSharpenMargin = 32;
// A plane's mirrored border is 38 pixels, but narrower for one with a side below 72, and whether it is odd
// decides which pixels share a 2x2 block. So no side may be cut to less than 72 pixels on the level of a
// quarter of the size.
constexpr int kLeastSide = 4 * 72;
// The sharpening leaves out a level under 5 x 5.
constexpr int kLeastSharpenSide = 8 * 6;

bool IsEmpty(const Rect& rect) {
  return rect.right <= rect.left || rect.bottom <= rect.top;
}

Rect Intersection(const Rect& a, const Rect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

CBxSize<int> SizeOf(const Rect& rect) {
  return {rect.right - rect.left, rect.bottom - rect.top};
}

int AlignDown(int value) {
  return value - value % kAlignment;
}

int AlignUp(int value) {
  return AlignDown(value + kAlignment - 1);
}

struct Span {
  int first;
  int end;
};

// Grown by the margin and to the least side, to multiples of the alignment, within 0 ... length.
Span Grown(Span span, int margin, int leastSide, int length) {
  const int first = AlignDown(std::max(span.first - margin, 0));
  const int end = std::min(AlignUp(std::max(span.end + margin, first + leastSide)), length);
  return {std::min(first, AlignDown(std::max(end - leastSide, 0))), end};
}

// Both sides grown, counted from `within`'s corner.
Rect Grown(const Rect& rect, int margin, int leastSide, const Rect& within) {
  const Span x = Grown(Span{rect.left - within.left, rect.right - within.left}, margin, leastSide,
                       within.right - within.left);
  const Span y = Grown(Span{rect.top - within.top, rect.bottom - within.top}, margin, leastSide,
                       within.bottom - within.top);
  return {within.left + x.first, within.top + y.first, within.left + x.end, within.top + y.end};
}

// The tiles of a whole run, one for a small photograph. Throws std::bad_alloc.
std::vector<Tile> TilesOf(const SBxPicBuf& picture) {
  const Rect whole{0, 0, picture.width, picture.height};
  if (picture.width < kTileSide && picture.height < kTileSide) return {Tile{whole, whole}};
  return PlanTiles(picture.width, picture.height, kTileSide, kTileMargin);
}

PicBuf Cropped(const SBxPicBuf& picture, const Rect& rect) {
  PicBuf crop(rect.right - rect.left, rect.bottom - rect.top, picture.components, picture.bitsPerComponent);
  if (crop.empty()) return crop;
  // CopyRect reads its source only, whatever its signature says.
  SBxPicBuf& source = const_cast<SBxPicBuf&>(picture);
  CBxPicBufAPI::CopyRect(crop, source, {0, 0}, {rect.left, rect.top}, SizeOf(rect));
  return crop;
}

// Filters what `wanted` (picture coordinates, inside tile.inner) needs of the tile, and puts it into
// `target`, whose corner lies at `origin`. False when memory was refused.
bool FilterPart(EngineContext& context, DenoiseRequest request, const SBxPicBuf& picture, const Tile& tile,
                const Rect& wanted, SBxPicBuf& target, const Rect& origin) {
  const Rect needed = Grown(wanted, kFilterMargin, kLeastSide, tile.outer);
  PicBuf source = Cropped(picture, needed);
  if (source.empty()) return false;
  PicBuf filtered;
  request.source = &source.record();
  request.destination = &filtered.record();
  if (DenoiseImage(context, request) != 0) return false;
  CBxPicBufAPI::CopyRect(target, filtered, {wanted.left - origin.left, wanted.top - origin.top},
                         {wanted.left - needed.left, wanted.top - needed.top}, SizeOf(wanted));
  return true;
}

DenoiseRequest RequestOf(const EngineContext& context, const PreviewRequest& preview) {
  DenoiseRequest request;
  request.Use(preview.parameters);
  request.quality = preview.quality;
  request.progressWindow = preview.progress;
  request.threads = std::max<std::uint32_t>(context.processorCount, 1);
  return request;
}

void StartProgress(const PreviewRequest& preview, const DenoiseRequest& request, int parts) {
  if (preview.progress == nullptr) return;
  const int steps = ProgressSteps(preview.quality, request.threads);
  preview.progress->SetStep(1);
  preview.progress->SetRange(
      0, parts * ProgressRange(steps, preview.source->components, request.strengthChromaLarge, false));
  preview.progress->SetPosition(0);
}

// `area` filtered; empty when memory was refused. Throws std::bad_alloc.
PicBuf FilterArea(EngineContext& context, const PreviewRequest& preview, const Rect& area) {
  const SBxPicBuf& picture = *preview.source;
  const DenoiseRequest request = RequestOf(context, preview);
  std::vector<Tile> tiles = TilesOf(picture);
  tiles.erase(std::remove_if(tiles.begin(), tiles.end(),
                             [&](const Tile& tile) { return IsEmpty(Intersection(tile.inner, area)); }),
              tiles.end());
  StartProgress(preview, request, static_cast<int>(tiles.size()));
  PicBuf filtered(area.right - area.left, area.bottom - area.top, picture.components,
                  picture.bitsPerComponent);
  if (filtered.empty()) return filtered;
  for (const Tile& tile : tiles) {
    const Rect wanted = Intersection(tile.inner, area);
    if (!FilterPart(context, request, picture, tile, wanted, filtered, area)) return {};
    if (context.control.Aborted()) return {};
  }
  return filtered;
}

}  // namespace

bool DenoisePreview(EngineContext& context, const PreviewRequest& request, PicBuf& result) {
  result = PicBuf();
  const Rect whole{0, 0, request.source->width, request.source->height};
  const Rect rect = Intersection(request.rectangle, whole);
  if (IsEmpty(rect)) return true;
  const Rect area = Grown(rect, kSharpenMargin, kLeastSharpenSide, whole);
  PicBuf filtered;
  try {
    filtered = FilterArea(context, request, area);
  } catch (const std::bad_alloc&) {
    return true;
  }
  if (filtered.empty() || context.control.Aborted()) return true;
  const DenoiseParameters& parameters = request.parameters;
  if (SharpenPicture(filtered, parameters.m_dSharp1, parameters.m_dSharp2, parameters.m_dSharp3)) return true;
  result = Cropped(
      filtered, {rect.left - area.left, rect.top - area.top, rect.right - area.left, rect.bottom - area.top});
  return result.empty();
}

}  // namespace mirellon::engine
