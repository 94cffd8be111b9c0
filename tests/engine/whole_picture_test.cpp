#include "engine/whole_picture.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/denoise_image.h"
#include "engine/tile_plan.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using engine::DenoiseRequest;
using engine::EngineContext;
using engine::Tile;
using picture::CBxRect;
using picture::PicBuf;
using Calls = std::vector<std::string>;

DenoiseRequest RequestFor(PicBuf& source, PicBuf& destination) {
  DenoiseRequest request;
  request.source = &source.record();
  request.destination = &destination.record();
  request.quality = 1;
  request.strengthChromaLarge = 0.0;
  return request;
}

bool operator==(const CBxRect<int>& a, const CBxRect<int>& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(TilePlan, CoversThePictureWithClippedMargins) {
  const std::vector<Tile> tiles = engine::PlanTiles(2100, 1000, 1000, 50);
  ASSERT_EQ(tiles.size(), 3U);
  EXPECT_TRUE((tiles[0].inner == CBxRect<int>{0, 0, 1000, 1000}));
  EXPECT_TRUE((tiles[0].outer == CBxRect<int>{0, 0, 1050, 1000}));
  EXPECT_TRUE((tiles[1].outer == CBxRect<int>{950, 0, 2050, 1000}));
  EXPECT_TRUE((tiles[2].inner == CBxRect<int>{2000, 0, 2100, 1000}));
  EXPECT_TRUE((tiles[2].outer == CBxRect<int>{1950, 0, 2100, 1000}));
  EXPECT_EQ(engine::PlanTiles(999, 5000, 1000, 50).size(), 5U);
  EXPECT_EQ(engine::PlanTiles(1001, 1001, 1000, 50).size(), 4U);
}

TEST(TilePlan, ProgressFollowsQualityProcessorsAndPasses) {
  EXPECT_EQ(engine::ProgressSteps(1, 1), 49);
  EXPECT_EQ(engine::ProgressSteps(2, 2), 84);
  EXPECT_EQ(engine::ProgressSteps(9, 4), 110);
  EXPECT_EQ(engine::ProgressRange(49, 3, 10.0, false), 122);
  EXPECT_EQ(engine::ProgressRange(49, 3, 1.0, false), 73);
  EXPECT_EQ(engine::ProgressRange(49, 1, 10.0, false), 24);
  EXPECT_EQ(engine::ProgressRange(49, 3, 10.0, true), 73);
  EXPECT_EQ(engine::ProgressRange(49, 3, 1.0, true), 24);
}

TEST(WholePicture, SmallPicturesRunUntiledAndSayHowFarTheyAre) {
  PicBuf source = test::PhotoLikePicture(60, 40, 3, 8, 1);
  PicBuf result;
  PicBuf expected;
  test::RecordingProgress progress;
  EngineContext context;
  context.processorCount = 2;
  DenoiseRequest request = RequestFor(source, result);
  request.progressWindow = &progress;
  EXPECT_TRUE(engine::DenoiseWholePicture(context, request, false));
  const Calls begin(progress.calls().begin(), progress.calls().begin() + 4);
  EXPECT_EQ(begin, (Calls{"advance 1", "step 1", "range 0 36", "position 1"}));
  EXPECT_EQ(progress.position(), 1 + 3 * 13);
  DenoiseRequest plain = RequestFor(source, expected);
  ASSERT_EQ(engine::DenoiseImage(context, plain), 0);
  EXPECT_TRUE(test::SamePicture(result, expected));
}

// Every pixel whose context lies inside its tile's margin: the search reaches 3, the patch 4 pixels at low
// quality.
TEST(WholePicture, TilesEqualTheWholeRunAtLowQuality) {
  for (const auto& [width, height] :
       std::vector<std::pair<int, int>>{{1130, 210}, {210, 1131}, {1021, 1003}}) {
    PicBuf source = test::PhotoLikePicture(width, height, 1, 8, 2);
    PicBuf tiled;
    PicBuf whole;
    EngineContext context;
    context.processorCount = 2;
    EXPECT_TRUE(engine::DenoiseWholePicture(context, RequestFor(source, tiled), false));
    ASSERT_EQ(engine::DenoiseImage(context, RequestFor(source, whole)), 0);
    EXPECT_TRUE(test::SamePicture(tiled, whole));
  }
}

TEST(WholePicture, TiledRunsCountTheirTiles) {
  PicBuf source = test::PhotoLikePicture(1100, 30, 3, 8, 3);
  PicBuf result;
  test::RecordingProgress progress;
  EngineContext context;
  DenoiseRequest request = RequestFor(source, result);
  request.progressWindow = &progress;
  EXPECT_TRUE(engine::DenoiseWholePicture(context, request, false));
  const Calls begin(progress.calls().begin(), progress.calls().begin() + 4);
  EXPECT_EQ(begin, (Calls{"advance 1", "step 1", "range 0 146", "position 1"}));
  request.colour = false;
  test::RecordingProgress grey;
  request.progressWindow = &grey;
  EXPECT_TRUE(engine::DenoiseWholePicture(context, request, false));
  EXPECT_EQ(grey.calls()[2], "range 0 49") << "two tiles of 49 steps, halved";
}

TEST(WholePicture, AnAbortKeepsFinishedTilesAndTheRestUnfiltered) {
  PicBuf source = test::PhotoLikePicture(1300, 60, 1, 8, 4);
  PicBuf complete;
  PicBuf result;
  EngineContext context;
  EXPECT_TRUE(engine::DenoiseWholePicture(context, RequestFor(source, complete), false));
  test::RecordingProgress progress;
  progress.OnAdvance([&context](int position) {
    if (position == 1 + 25 + 5) context.control.RequestAbort();  // in the second tile
  });
  DenoiseRequest request = RequestFor(source, result);
  request.progressWindow = &progress;
  EXPECT_FALSE(engine::DenoiseWholePicture(context, request, false));
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 1300; ++x) {
      const picture::SBxPicBuf& expected = x < 1000 ? complete.record() : source.record();
      ASSERT_EQ(test::Sample(result, x, y), test::Sample(expected, x, y)) << x << ", " << y;
    }
  }
}

TEST(WholePicture, ThreadsAndDepthDoNotChangeTheResult) {
  for (const int bits : {8, 16}) {
    PicBuf source = test::PhotoLikePicture(1010, 90, 3, bits, 5);
    PicBuf first;
    for (const std::uint32_t processors : {1U, 2U, 5U, 64U}) {
      PicBuf result;
      EngineContext context;
      context.processorCount = processors;
      DenoiseRequest request = RequestFor(source, result);
      request.strengthChromaLarge = 10.0;
      EXPECT_TRUE(engine::DenoiseWholePicture(context, request, false));
      if (first.empty()) {
        first = std::move(result);
      } else {
        EXPECT_TRUE(test::SamePicture(result, first)) << processors;
      }
    }
  }
}

}  // namespace
}  // namespace mirellon
