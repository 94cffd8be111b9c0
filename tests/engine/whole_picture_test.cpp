#include "engine/whole_picture.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "engine/denoise_image.h"
#include "engine/tile_plan.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

DenoiseRequest RequestFor(PicBuf& source, PicBuf& destination) {
  DenoiseRequest request{&destination.record(), &source.record()};
  request.quality = 1;
  request.strengthChromaLarge = 0.0;
  return request;
}

TEST(TilePlan, CoversThePictureWithClippedMargins) {
  const std::vector<Tile> tiles = PlanTiles(2100, 1000, 1000, 50);
  ASSERT_EQ(tiles.size(), 3U);
  const auto& [inner, outer] = tiles[1];
  EXPECT_EQ(std::tuple(inner.left, inner.top, inner.right, inner.bottom), std::tuple(1000, 0, 2000, 1000));
  EXPECT_EQ(std::tuple(outer.left, outer.top, outer.right, outer.bottom), std::tuple(950, 0, 2050, 1000));
  EXPECT_EQ(std::tuple(tiles[2].inner.right, tiles[2].outer.right), std::tuple(2100, 2100));
  EXPECT_EQ(PlanTiles(999, 5000, 1000, 50).size(), 5U);
  EXPECT_EQ(PlanTiles(1001, 1001, 1000, 50).size(), 4U);
}

TEST(TilePlan, ProgressFollowsQualityProcessorsAndPasses) {
  EXPECT_EQ(std::tuple(ProgressSteps(1, 1), ProgressSteps(2, 2), ProgressSteps(9, 4)),
            std::tuple(49, 84, 110));
  EXPECT_EQ(ProgressRange(49, 3, 10.0, false), 122);
  EXPECT_EQ(ProgressRange(49, 3, 1.0, false), 73);
  EXPECT_EQ(ProgressRange(49, 1, 10.0, false), 24);
  EXPECT_EQ(ProgressRange(49, 3, 10.0, true), 73);
  EXPECT_EQ(ProgressRange(49, 3, 1.0, true), 24);
}

// At the end: one, and the steps of each plane of each tile.
TEST(WholePicture, SaysHowFarItIs) {
  for (const auto& [width, colour, processors, range, position] :
       {std::tuple{60, true, 2U, "range 0 36", 1 + 3 * 13},
        {60, false, 1U, "range 0 24", 1 + 3 * 25},
        {1100, true, 1U, "range 0 146", 1 + 2 * 3 * 25},
        {1100, false, 1U, "range 0 49", 1 + 2 * 3 * 25}}) {
    PicBuf source = test::PhotoLikePicture(width, 30, 3, 8, 3);
    PicBuf result;
    test::RecordingProgress progress;
    EngineContext context;
    context.processorCount = processors;
    DenoiseRequest request = RequestFor(source, result);
    request.colour = colour;
    request.progressWindow = &progress;
    EXPECT_TRUE(DenoiseWholePicture(context, request, false));
    EXPECT_EQ(std::vector(progress.calls().begin(), progress.calls().begin() + 4),
              (std::vector<std::string>{"advance 1", "step 1", range, "position 1"}));
    EXPECT_EQ(progress.position(), position);
  }
}

// Without the large-scale pass every pixel's context lies inside its tile's margin: the search reaches 3 to
// 10, the patch 4 pixels. The first picture is not tiled at all.
TEST(WholePicture, TilesEqualTheWholeRunWithoutTheLargeScalePass) {
  for (const auto& [width, height, components, bits, quality] : {std::tuple{60, 40, 3, 8, 1U},
                                                                 {1130, 210, 1, 8, 1U},
                                                                 {210, 1131, 1, 16, 1U},
                                                                 {1021, 1003, 1, 8, 1U},
                                                                 {1093, 61, 3, 8, 3U},
                                                                 {57, 2011, 1, 8, 3U},
                                                                 {1131, 131, 1, 16, 2U}}) {
    PicBuf source = test::PhotoLikePicture(width, height, components, bits, 2);
    PicBuf tiled;
    PicBuf whole;
    EngineContext context;
    context.processorCount = 5;
    DenoiseRequest request = RequestFor(source, tiled);
    request.quality = quality;
    EXPECT_TRUE(DenoiseWholePicture(context, request, false));
    request.destination = &whole.record();
    ASSERT_EQ(DenoiseImage(context, request), 0);
    EXPECT_TRUE(test::SamePicture(tiled, whole)) << width << "x" << height;
  }
}

TEST(WholePicture, AnAbortKeepsFinishedTilesAndTheRestUnfiltered) {
  PicBuf source = test::PhotoLikePicture(2300, 60, 1, 8, 4);
  PicBuf expected = test::CopyOf(source);
  PicBuf complete;
  PicBuf result;
  EngineContext context;
  EXPECT_TRUE(DenoiseWholePicture(context, RequestFor(source, complete), false));
  picture::CBxPicBufAPI::CopyRect(expected, complete, {0, 0}, {0, 0}, {1000, 60});
  test::RecordingProgress progress;
  progress.OnAdvance([&context](int position) {
    if (position == 1 + 25 + 5) context.control.RequestAbort();  // in the second tile of three
  });
  DenoiseRequest request = RequestFor(source, result);
  request.progressWindow = &progress;
  EXPECT_FALSE(DenoiseWholePicture(context, request, false));
  EXPECT_TRUE(test::SamePicture(result, expected));
}

}  // namespace
}  // namespace mirellon::engine
