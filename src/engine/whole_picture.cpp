#include "engine/whole_picture.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <thread>
#include <vector>

#include "engine/denoise_image.h"
#include "engine/denoise_region.h"
#include "engine/fusion.h"
#include "engine/parallel_for.h"
#include "engine/tile_plan.h"

namespace mirellon::engine {

namespace {

using base::ProgressSink;
using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::CBxSize;
using picture::SBxPicBuf;

// What a run does, decided before it begins.
struct RunPlan {
  DenoiseRequest request;
  int tileSide;
  int steps;
  int range;  // of one untiled run or one tile
};

RunPlan PlanRun(const EngineContext& context, const DenoiseRequest& request) {
  const bool cardUsable = context.card != nullptr && context.card->HardwareUsable() &&
                          context.card->MaxTileSide() >= kLeastCardTile;
  RunPlan plan{request, kTileSide, 0, 0};
  plan.request.useGpu = request.useGpu && cardUsable;
  plan.request.threads = std::max<std::uint32_t>(context.processorCount, 1);
  if (plan.request.useGpu) plan.tileSide = std::min(kTileSide, context.card->MaxTileSide());
  plan.steps = ProgressSteps(request.quality, plan.request.useGpu ? 1 : plan.request.threads);
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

// Denoises a tile; one that an aborted run did not reach stays as it was. Returns what DenoiseRegion does.
int FinishTile(EngineContext& context, const RunPlan& plan, const Tile& tile) {
  SBxPicBuf& destination = *plan.request.destination;
  if (!context.control.Aborted()) {
    return DenoiseRegion(context, plan.request, *plan.request.source, tile, destination);
  }
  const picture::CBxPoint<int> origin{tile.inner.left, tile.inner.top};
  CBxPicBufAPI::CopyRect(destination, *plan.request.source, origin, origin, SizeOf(tile.inner));
  return 0;
}

// Collects the steps of tiles that run side by side, each on one thread, and passes them on from the calling
// thread: as many as if all threads had shared each tile.
class TileProgress : public ProgressSink {
 public:
  TileProgress(ProgressSink* sink, std::uint32_t threads) : sink_(sink), threads_(threads) {}

  void SetRange(int low, int high) override { sink_->SetRange(low, high); }
  void SetPosition(int position) override { sink_->SetPosition(position); }
  void SetStep(int step) override { sink_->SetStep(step); }
  void Advance(int n) override {
    const std::int64_t steps = steps_.fetch_add(n, std::memory_order_relaxed) + n;
    if (std::this_thread::get_id() != owner_) return;
    for (; shown_ < steps / threads_; ++shown_) sink_->Advance(1);
  }

 private:
  ProgressSink* sink_;
  std::uint32_t threads_;
  std::thread::id owner_ = std::this_thread::get_id();
  std::int64_t shown_ = 0;
  std::atomic<std::int64_t> steps_{0};
};

// Denoises the first tiles side by side, each on one thread, so that conversion, medians and pyramids are
// shared too. False when memory was refused.
bool DenoiseSideBySide(EngineContext& context, const RunPlan& plan, const std::vector<Tile>& tiles,
                       std::size_t count) {
  RunPlan single = plan;
  TileProgress progress(plan.request.progressWindow, plan.request.threads);
  if (plan.request.progressWindow != nullptr) single.request.progressWindow = &progress;
  single.request.threads = 1;
  std::atomic<bool> refused{false};
  const auto finish = [&](int i, std::uint32_t) {
    if (!refused && FinishTile(context, single, tiles[static_cast<std::size_t>(i)]) != 0) refused = true;
  };
  ParallelFor(plan.request.threads, static_cast<int>(count),
              std::ref(finish));  // a copy would ask for memory
  return !refused;
}

// As many tiles side by side as give every thread the same number; all threads share each of the rest, unless
// the rest keeps nearly all of them busy with one each.
std::size_t TilesSideBySide(std::size_t tiles, std::size_t threads) {
  const std::size_t rest = tiles % threads;
  return 4 * rest >= 3 * threads ? tiles : tiles - rest;
}

// False when memory was refused.
bool DenoiseTiled(EngineContext& context, const RunPlan& plan) {
  SBxPicBuf& source = *plan.request.source;
  SBxPicBuf& destination = *plan.request.destination;
  std::vector<Tile> tiles;
  try {
    tiles = PlanTiles(source.width, source.height, plan.tileSide, kTileMargin);
  } catch (const std::bad_alloc&) {
    return false;
  }
  const auto count = static_cast<int>(tiles.size());
  StartProgress(plan.request.progressWindow,
                plan.request.colour ? count * plan.range : count * plan.steps / 2);
  CBxPicBufAPI::ReinitHeap(destination, source);
  if (destination.samples == nullptr) return false;
  const std::size_t sideBySide =
      plan.request.useGpu ? 0 : TilesSideBySide(tiles.size(), plan.request.threads);
  if (!DenoiseSideBySide(context, plan, tiles, sideBySide)) return false;
  return std::all_of(tiles.begin() + static_cast<std::ptrdiff_t>(sideBySide), tiles.end(),
                     [&](const Tile& tile) { return FinishTile(context, plan, tile) == 0; });
}

// Processor and card share the tiles. False when memory was refused.
bool DenoiseFused(EngineContext& context, const RunPlan& plan) {
  SBxPicBuf& source = *plan.request.source;
  std::vector<Tile> tiles;
  try {
    tiles = PlanTiles(source.width, source.height, plan.tileSide, kFusionMargin);
  } catch (const std::bad_alloc&) {
    return false;
  }
  const auto count = static_cast<int>(tiles.size());
  StartProgress(plan.request.progressWindow, count + 3);
  CBxPicBufAPI::ReinitHeap(*plan.request.destination, source);
  if (plan.request.destination->samples == nullptr) return false;
  RunPlan onCard = plan;
  onCard.request.progressWindow = nullptr;  // whole tiles are counted
  RunPlan onProcessor = onCard;
  onProcessor.request.useGpu = false;
  context.cardRun.processorIsElsewhere = true;
  const auto finish = [&](int tile, TileTaker taker) {
    return FinishTile(context, taker == TileTaker::kCard ? onCard : onProcessor,
                      tiles[static_cast<std::size_t>(tile)]);
  };
  const bool done = ShareTiles(count, plan.request.progressWindow, std::ref(finish));
  context.cardRun.processorIsElsewhere = false;
  return done;
}

}  // namespace

bool DenoiseWholePicture(EngineContext& context, const DenoiseRequest& request, bool fusion) {
  const RunPlan plan = PlanRun(context, request);
  context.cardRun = {};
  const bool small = request.source->width < plan.tileSide && request.source->height < plan.tileSide;
  const bool fused = fusion && plan.request.useGpu && plan.request.threads > 1;
  const bool done = small   ? DenoiseUntiled(context, plan)
                    : fused ? DenoiseFused(context, plan)
                            : DenoiseTiled(context, plan);
  if (!done) CBxPicBufAPI::DoneHeap(*request.destination);
  return done && !context.control.Aborted();
}

}  // namespace mirellon::engine
