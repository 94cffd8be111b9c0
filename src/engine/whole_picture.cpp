#include "engine/whole_picture.h"

#include <algorithm>

#include "engine/denoise_image.h"
#include "engine/tile_plan.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using base::ProgressSink;
using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::CBxSize;
using picture::PicBuf;
using picture::SBxPicBuf;

// What a run does, decided before it begins.
struct RunPlan {
  DenoiseRequest request;
  int tileSide;
  int steps;
  int range;  // of one untiled run or one tile
};

RunPlan PlanRun(const EngineContext& context, const DenoiseRequest& request) {
  const bool cardUsable = context.card != nullptr && context.card->HardwareUsable();
  RunPlan plan{request, kTileSide, 0, 0};
  plan.request.useGpu = request.useGpu && cardUsable;
  plan.request.threads = context.processorCount;
  if (plan.request.useGpu) plan.tileSide = std::min(kTileSide, context.card->MaxTileSide());
  plan.steps = ProgressSteps(request.quality, plan.request.useGpu ? 1 : context.processorCount);
  plan.range =
      ProgressRange(plan.steps, request.source->components, request.strengthChromaLarge, plan.request.useGpu);
  return plan;
}

void StartProgress(ProgressSink* sink, int range) {
  if (sink == nullptr) return;
  sink->Advance(1);
  sink->SetStep(1);
  sink->SetRange(0, range);
  sink->SetPosition(1);
}

CBxSize<int> SizeOf(const CBxRect<int>& rectangle) {
  return {rectangle.right - rectangle.left, rectangle.bottom - rectangle.top};
}

bool DenoiseUntiled(EngineContext& context, const RunPlan& plan) {
  StartProgress(plan.request.progressWindow, plan.request.colour ? plan.range : plan.steps / 2);
  return DenoiseImage(context, plan.request) == 0;
}

// False when memory was refused.
bool DenoiseTile(EngineContext& context, const RunPlan& plan, const Tile& tile) {
  SBxPicBuf& picture = *plan.request.source;
  const CBxSize<int> outer = SizeOf(tile.outer);
  PicBuf source(outer.width, outer.height, picture.components, picture.bitsPerComponent);
  if (source.empty()) return false;
  CBxPicBufAPI::CopyRect(source, picture, {0, 0}, {tile.outer.left, tile.outer.top}, outer);
  PicBuf result;
  DenoiseRequest request = plan.request;
  request.source = &source.record();
  request.destination = &result.record();
  if (DenoiseImage(context, request) != 0) return false;
  CBxPicBufAPI::CopyRect(*plan.request.destination, result, {tile.inner.left, tile.inner.top},
                         {tile.inner.left - tile.outer.left, tile.inner.top - tile.outer.top},
                         SizeOf(tile.inner));
  return true;
}

bool DenoiseTiled(EngineContext& context, const RunPlan& plan) {
  SBxPicBuf& source = *plan.request.source;
  SBxPicBuf& destination = *plan.request.destination;
  const std::vector<Tile> tiles = PlanTiles(source.width, source.height, plan.tileSide, kTileMargin);
  const auto count = static_cast<int>(tiles.size());
  StartProgress(plan.request.progressWindow,
                plan.request.colour ? count * plan.range : count * plan.steps / 2);
  CBxPicBufAPI::ReinitHeap(destination, source);
  if (destination.samples == nullptr) return false;
  bool done = true;
  for (const Tile& tile : tiles) {
    if (done && !context.control.Aborted()) {
      done = DenoiseTile(context, plan, tile);
    } else {  // what an aborted run did not reach stays as it was
      CBxPicBufAPI::CopyRect(destination, source, {tile.inner.left, tile.inner.top},
                             {tile.inner.left, tile.inner.top}, SizeOf(tile.inner));
    }
  }
  return done;
}

}  // namespace

bool DenoiseWholePicture(EngineContext& context, const DenoiseRequest& request, bool /*fusion*/) {
  const RunPlan plan = PlanRun(context, request);
  const bool small = request.source->width < plan.tileSide && request.source->height < plan.tileSide;
  const bool done = small ? DenoiseUntiled(context, plan) : DenoiseTiled(context, plan);
  if (!done) CBxPicBufAPI::DoneHeap(*request.destination);
  return done && !context.control.Aborted();
}

}  // namespace mirellon::engine
