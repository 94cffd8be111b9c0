#include "engine/fusion.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <set>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "engine/fake_card.h"
#include "engine/tile_plan.h"
#include "engine/whole_picture.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;
using test::FakeCard;
using Tiles = std::vector<int>;

TEST(FusionEstimate, TheProcessorStopsWhenTheCardWouldBeDoneFirst) {
  const struct {
    FusionTimes times;
    bool leave;
  } cases[] = {
      // Nothing is known until both have finished two.
      {{2, 10, 3, 100000, 5, 0, 0}, false},
      {{3, 20, 2, 100000, 5, 0, 0}, false},
      // Card 10 a tile, processor 100. Five remain: the card needs until 1000 + 60.
      {{3, 20, 3, 200, 5, 1000, 960}, false},
      {{3, 20, 3, 200, 5, 1000, 961}, true},
      // With many left the processor's tile ends before the card could do all.
      {{3, 20, 3, 200, 50, 1000, 1005}, false},
      {{3, 20, 3, 200, 9, 1000, 1000}, false},
      {{3, 20, 3, 200, 8, 1000, 1000}, true},
      // A slow card is never left alone.
      {{3, 2000000, 100, 990, 1, 1000, 1005}, false},
  };
  for (const auto& [times, leave] : cases) EXPECT_EQ(CardAloneIsFaster(times), leave) << times.now;
}

// Both sides on one clock, which jumps from one finished tile to the next.
struct Simulation {
  Simulation(int tiles, std::int64_t cardMs, std::int64_t processorMs)
      : queue(tiles, nullptr, [this] { return now; }) {
    std::optional<int> onCard = queue.TakeForCard();
    std::optional<int> onProcessor = queue.TakeForProcessor();
    std::int64_t cardEnd = cardMs;
    std::int64_t processorEnd = processorMs;
    while (onCard || onProcessor) {
      const bool card = onCard && (!onProcessor || cardEnd <= processorEnd);
      now = card ? cardEnd : processorEnd;
      ++(card ? cardTiles : processorTiles);
      if (card) {
        onCard = queue.TakeForCard();
        cardEnd = now + cardMs;
        if (!onCard) queue.EndCard(std::nullopt);
      } else {
        // It would wait for a card that works on: here nobody else moves the clock.
        FusionTimes times{cardTiles + 1,
                          cardTiles * cardMs,
                          processorTiles + 1,
                          processorTiles * processorMs,
                          tiles_ - cardTiles - processorTiles - (onCard ? 1 : 0),
                          cardEnd - cardMs,
                          now};
        const bool waits = onCard && (times.remaining == 0 || CardAloneIsFaster(times));
        onProcessor = waits ? std::nullopt : queue.TakeForProcessor();
        processorEnd = now + processorMs;
      }
    }
  }

  std::int64_t now = 0;
  int tiles_ = 24;
  FusionQueue queue;
  int cardTiles = 0;
  int processorTiles = 0;
};

TEST(FusionQueue, SharesTilesByTheirTimes) {
  for (const auto& [cardMs, processorMs, onProcessor, end] :
       {std::tuple{100, 100, 12, 1200}, {10, 100, 2, 220}, {100, 10, 21, 300}, {100000, 100, 23, 100000}}) {
    const Simulation simulation(24, cardMs, processorMs);
    EXPECT_EQ(simulation.cardTiles + simulation.processorTiles, 24);
    EXPECT_NEAR(simulation.processorTiles, onProcessor, 1) << cardMs << " " << processorMs;
    EXPECT_NEAR(static_cast<double>(simulation.now), end, 0.1 * end) << cardMs << " " << processorMs;
  }
}

TEST(ShareTiles, EveryTileIsFinishedOnceByOneSide) {
  for (const int count : {1, 2, 3, 50}) {
    for (const int failAt : {-1, 0, 7}) {
      std::mutex mutex;
      std::multiset<int> done;
      int cardTiles = 0;
      test::RecordingProgress progress;
      EXPECT_TRUE(ShareTiles(count, &progress, [&](int tile, TileTaker taker) {
        const std::lock_guard lock(mutex);
        if (taker == TileTaker::kCard && cardTiles++ == failAt) return 2;
        done.insert(tile);
        return 0;
      }));
      EXPECT_EQ(done.size(), static_cast<std::size_t>(count));
      EXPECT_EQ(std::set<int>(done.begin(), done.end()).size(), static_cast<std::size_t>(count));
      EXPECT_EQ(progress.position(), count);
      EXPECT_LE(cardTiles, failAt < 0 ? count : failAt + 1);
    }
  }
}

TEST(ShareTiles, EndsWhenTheProcessorFails) {
  std::atomic<bool> failed = false;
  EXPECT_FALSE(ShareTiles(1000, nullptr, [&](int, TileTaker taker) {
    if (taker == TileTaker::kProcessor) {
      failed = true;
      failed.notify_all();
      return 1;
    }
    failed.wait(false);
    return 0;
  }));
}

// ---- Whole pictures, six tiles of 100 pixels ----

struct FusedRun {
  FusedRun() {
    context.processorCount = 2;
    context.card = &card;
    card.maxTileSide = 100;
  }

  bool Denoise(bool fusion) {
    DenoiseRequest request{&result.record(), &source.record()};
    request.strength = request.strengthChroma = 30.0;
    request.strengthChromaLarge = 0.0;
    request.quality = 1;
    request.useGpu = fusion;
    request.progressWindow = &progress;
    return DenoiseWholePicture(context, request, fusion);
  }

  PicBuf source = test::PhotoLikePicture(300, 130, 3, 8, 6);
  PicBuf result;
  test::RecordingProgress progress;
  EngineContext context;
  FakeCard card;
};

PicBuf Expected() {
  FusedRun run;
  EXPECT_TRUE(run.Denoise(false));
  return std::move(run.result);
}

TEST(Fusion, BothSidesGiveOnePicture) {
  const PicBuf expected = Expected();
  for (const int failFrom : {-1, 0, 1}) {  // the card: never, at once, in the middle
    FusedRun run;
    run.card.way = failFrom < 0 ? FakeCard::Way::kRight : FakeCard::Way::kFails;
    run.card.wrongFrom = failFrom;
    EXPECT_TRUE(run.Denoise(true));
    EXPECT_TRUE(test::SamePicture(run.result, expected));
    EXPECT_EQ(std::vector(run.progress.calls().begin(), run.progress.calls().begin() + 4),
              (std::vector<std::string>{"advance 1", "step 1", "range 0 9", "position 1"}));
    EXPECT_EQ(run.progress.position(), 1 + 6);
    EXPECT_LE(run.card.jobs, failFrom < 0 ? 6 : failFrom + 1);
  }
  FusedRun one;
  one.context.processorCount = 1;
  EXPECT_TRUE(one.Denoise(true));
  EXPECT_EQ(one.card.jobs, 6);  // no fusion: all of it
}

// Its one tile takes as long as all others on the processor.
TEST(Fusion, ASlowCardHoldsNobodyUp) {
  FusedRun run;
  std::mutex mutex;
  std::condition_variable taken;
  int position = 0;
  run.progress.OnAdvance([&](int now) {
    const std::lock_guard lock(mutex);
    position = now;
    taken.notify_all();
  });
  run.card.onJob = [&](int) {
    std::unique_lock lock(mutex);
    taken.wait(lock, [&] { return position == 1 + 6; });
  };
  EXPECT_TRUE(run.Denoise(true));
  EXPECT_TRUE(test::SamePicture(run.result, Expected()));
  EXPECT_LE(run.card.jobs, 1);
}

TEST(Fusion, AnAbortLeavesEveryTileFinishedOrAsItWas) {
  const PicBuf expected = Expected();
  FusedRun run;
  run.progress.OnAdvance([&](int position) {
    if (position == 1 + 3) run.context.control.RequestAbort();
  });
  EXPECT_FALSE(run.Denoise(true));
  const PicBuf untouched = test::CopyOf(run.source);
  for (const Tile& tile : PlanTiles(300, 130, 100, 0)) {
    bool finished = true;
    bool original = true;
    for (int y = tile.inner.top; y < tile.inner.bottom; ++y) {
      for (int x = tile.inner.left; x < tile.inner.right; ++x) {
        const unsigned sample = test::Sample(run.result, x, y);
        finished &= sample == test::Sample(expected, x, y);
        original &= sample == test::Sample(untouched, x, y);
      }
    }
    EXPECT_TRUE(finished || original) << tile.inner.left << " " << tile.inner.top;
  }
}

}  // namespace
}  // namespace mirellon::engine
