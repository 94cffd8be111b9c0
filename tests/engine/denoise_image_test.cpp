#include "engine/denoise_image.h"

#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine/chroma_large.h"
#include "engine/reference_pipeline.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using engine::DenoiseRequest;
using engine::EngineContext;
using picture::PicBuf;

DenoiseRequest RequestFor(PicBuf& source, PicBuf& destination) {
  DenoiseRequest request;
  request.source = &source.record();
  request.destination = &destination.record();
  request.threads = 2;
  return request;
}

struct PipelineCase {
  int width;
  int height;
  int components;
  int bits;
  std::uint32_t quality;
  double chromaLarge;
  double dynamics;
  int artefacts;
};

// The whole pipeline against the plain one, odd and tiny sizes included.
TEST(DenoiseImage, EqualsThePlainPipeline) {
  const std::vector<PipelineCase> cases = {
      {64, 48, 3, 8, 1, 10.0, 0.0, 0}, {61, 47, 3, 8, 2, 1.0, 0.4, 1},   {45, 33, 3, 16, 1, 1.5, -0.4, 2},
      {30, 12, 3, 8, 3, 25.0, 0.0, 2}, {19, 40, 3, 16, 7, 10.0, 0.0, 1}, {5, 5, 3, 8, 1, 10.0, 0.0, 0},
      {3, 2, 3, 8, 1, 10.0, 0.0, 2},   {1, 1, 3, 16, 2, 10.0, 0.0, 1},   {4, 33, 3, 8, 1, 10.0, 0.0, 0},
      {33, 4, 3, 8, 1, 10.0, 0.0, 1},  {57, 41, 1, 8, 1, 10.0, 0.5, 1},  {22, 23, 1, 16, 2, 10.0, 0.0, 2}};
  std::uint64_t seed = 10;
  for (const PipelineCase& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.width << "x" << c.height << "x" << c.components << " " << c.bits << " bits");
    PicBuf source = test::PhotoLikePicture(c.width, c.height, c.components, c.bits, ++seed);
    PicBuf original;
    picture::CBxPicBufAPI::Copy(original, source);
    PicBuf result;
    DenoiseRequest request = RequestFor(source, result);
    request.strength = 12.0;
    request.strengthChroma = 18.0;
    request.strengthChromaLarge = c.chromaLarge;
    request.quality = c.quality;
    request.dynamics = c.dynamics;
    request.pointArtefactMode = c.artefacts;
    EngineContext context;
    ASSERT_EQ(engine::DenoiseImage(context, request), 0);
    EXPECT_TRUE(test::SamePicture(result, test::ReferenceImage(request)));
    EXPECT_TRUE(test::SamePicture(source, original)) << "the source changed";
  }
}

TEST(DenoiseImage, TheLargeScalePassTakesTheWholePartOfItsStrength) {
  PicBuf source = test::PhotoLikePicture(64, 64, 3, 8, 3);
  const auto run = [&source](double strength) {
    PicBuf result;
    DenoiseRequest request = RequestFor(source, result);
    request.quality = 1;
    request.strengthChromaLarge = strength;
    EngineContext context;
    EXPECT_EQ(engine::DenoiseImage(context, request), 0);
    return result;
  };
  EXPECT_TRUE(test::SamePicture(run(9.99), run(9.0)));
  EXPECT_FALSE(test::SamePicture(run(9.0), run(10.0)));
}

TEST(DenoiseImage, TheLargeScalePassRunsAboveOne) {
  PicBuf source = test::PhotoLikePicture(64, 64, 3, 8, 3);
  for (const auto& [strength, planes] : std::vector<std::pair<double, int>>{{0.0, 3}, {1.0, 3}, {1.5, 5}}) {
    PicBuf result;
    test::RecordingProgress progress;
    DenoiseRequest request = RequestFor(source, result);
    request.quality = 1;
    request.strengthChromaLarge = strength;
    request.progressWindow = &progress;
    EngineContext context;
    ASSERT_EQ(engine::DenoiseImage(context, request), 0);
    EXPECT_EQ(progress.position(), planes * 13) << strength;
  }
}

// Without the colour pipeline every component is filtered alike, as a plane of its own.
TEST(DenoiseImage, FiltersComponentsAsPlanesWithoutColour) {
  PicBuf source = test::PhotoLikePicture(41, 30, 3, 8, 4);
  PicBuf result;
  DenoiseRequest request = RequestFor(source, result);
  request.colour = false;
  request.quality = 1;
  EngineContext context;
  ASSERT_EQ(engine::DenoiseImage(context, request), 0);
  for (unsigned c = 0; c < 3; ++c) {
    PicBuf plane(source.record(), 1);
    PicBuf expected;
    picture::CBxPicBufAPI::ExtractComponent(plane, c, source);
    DenoiseRequest single = RequestFor(plane, expected);
    single.quality = 1;
    ASSERT_EQ(engine::DenoiseImage(context, single), 0);
    PicBuf actual(source.record(), 1);
    picture::CBxPicBufAPI::ExtractComponent(actual, c, result);
    EXPECT_TRUE(test::SamePicture(actual, expected)) << "component " << c;
  }
}

TEST(DenoiseImage, AnAbortGivesTheSourceBack) {
  for (const int artefacts : {0, 2}) {
    for (const int components : {1, 3}) {
      PicBuf source = test::PhotoLikePicture(61, 50, components, 8, 7);
      PicBuf result;
      test::RecordingProgress progress;
      EngineContext context;
      progress.OnAdvance([&context](int position) {
        if (position == 10) context.control.RequestAbort();
      });
      DenoiseRequest request = RequestFor(source, result);
      request.progressWindow = &progress;
      request.pointArtefactMode = artefacts;
      ASSERT_EQ(engine::DenoiseImage(context, request), 0);
      EXPECT_TRUE(context.control.Aborted());
      EXPECT_TRUE(test::SamePicture(result, source)) << components << " components, mode " << artefacts;
    }
  }
}

}  // namespace
}  // namespace mirellon
