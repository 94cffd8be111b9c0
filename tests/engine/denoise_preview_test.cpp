#include "engine/denoise_preview.h"

#include <algorithm>

#include "engine/detail_pyramid.h"
#include "engine/whole_picture.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::CBxRect;
using picture::PicBuf;
using test::Random;

// What every reach of the filters is driven to its end with.
DenoiseParameters StrongParameters() {
  DenoiseParameters parameters;
  parameters.m_dStrength = 30.0;
  parameters.m_dStrengthChroma = 40.0;
  parameters.m_dStrengthChromaLarge = 40.0;
  parameters.m_dDynamics = 0.7;
  parameters.m_dSharp1 = 1.4;
  parameters.m_dSharp2 = 0.6;
  parameters.m_dSharp3 = 2.0;
  parameters.m_iUseMedian = 2;
  return parameters;
}

PicBuf WholeRun(EngineContext& context, PicBuf& source, const DenoiseParameters& parameters,
                std::uint32_t quality) {
  PicBuf result;
  DenoiseRequest request;
  request.source = &source.record();
  request.destination = &result.record();
  request.strength = parameters.m_dStrength;
  request.strengthChroma = parameters.m_dStrengthChroma;
  request.strengthChromaLarge = parameters.m_dStrengthChromaLarge;
  request.quality = quality;
  request.dynamics = parameters.m_dDynamics;
  request.pointArtefactMode = parameters.m_iUseMedian;
  EXPECT_TRUE(DenoiseWholePicture(context, request, false));
  EXPECT_FALSE(SharpenPicture(result, parameters.m_dSharp1, parameters.m_dSharp2, parameters.m_dSharp3));
  return result;
}

CBxRect<int> RandomRectangle(Random& random, int width, int height) {
  const int left = random.Below(width + 40) - 20;
  const int top = random.Below(height + 40) - 20;
  return {left, top, left + 1 + random.Below(120), top + 1 + random.Below(90)};
}

PicBuf Crop(PicBuf& picture, const CBxRect<int>& rect) {
  PicBuf crop(rect.right - rect.left, rect.bottom - rect.top, picture->components, picture->bitsPerComponent);
  CBxPicBufAPI::CopyRect(crop, picture, {0, 0}, {rect.left, rect.top}, {crop->width, crop->height});
  return crop;
}

struct Case {
  const char* name;
  int width;
  int height;
  int components;
  int bits;
  std::uint32_t quality;
  int rectangles;
};

class DenoisePreviewTest : public ::testing::TestWithParam<Case> {};

TEST_P(DenoisePreviewTest, EqualsTheWholeRunInsideAnyRectangle) {
  const Case& c = GetParam();
  EngineContext context;
  context.processorCount = 2;
  PicBuf source = test::PhotoLikePicture(c.width, c.height, c.components, c.bits, 5);
  const PicBuf before = test::CopyOf(source);
  PicBuf whole = WholeRun(context, source, StrongParameters(), c.quality);
  Random random(77);
  for (int i = 0; i < c.rectangles; ++i) {
    const CBxRect<int> rect = RandomRectangle(random, c.width, c.height);
    const CBxRect<int> inside{std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, c.width),
                              std::min(rect.bottom, c.height)};
    const PreviewRequest request{&source.record(), rect, StrongParameters(), c.quality, nullptr};
    PicBuf result;
    const bool failed = DenoisePreview(context, request, result);
    if (inside.right <= inside.left || inside.bottom <= inside.top) {
      EXPECT_TRUE(failed && result.empty());
      continue;
    }
    ASSERT_FALSE(failed);
    ASSERT_TRUE(test::SamePicture(result, Crop(whole, inside)))
        << rect.left << "," << rect.top << " " << rect.right << "," << rect.bottom;
  }
  EXPECT_TRUE(test::SamePicture(source, before));
}

INSTANTIATE_TEST_SUITE_P(Kinds, DenoisePreviewTest,
                         ::testing::Values(Case{"Colour", 427, 389, 3, 8, kQualityMedium, 12},
                                           Case{"Superior", 361, 333, 3, 8, kQualitySuperior, 8},
                                           Case{"Deep", 333, 298, 3, 16, kQualityLow, 12},
                                           Case{"Grey", 401, 350, 1, 8, kQualityMedium, 20},
                                           Case{"Low", 430, 37, 3, 8, kQualityLow, 12},
                                           Case{"Tiled", 1291, 301, 3, 8, kQualityLow, 20},
                                           Case{"Large", 733, 698, 3, 8, kQualitySuperior, 10},
                                           Case{"Small", 250, 131, 3, 16, kQualityMedium, 20},
                                           Case{"Tiny", 9, 3, 3, 8, kQualityMedium, 10}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(DenoisePreviewControlTest, StopsOnRequestAndReportsProgress) {
  EngineContext context;
  PicBuf source = test::PhotoLikePicture(300, 300, 3, 8, 6);
  test::RecordingProgress progress;
  PreviewRequest request{&source.record(), {100, 100, 200, 200}, DenoiseParameters(), kQualityLow, &progress};
  PicBuf result;
  ASSERT_FALSE(DenoisePreview(context, request, result));
  EXPECT_GT(progress.position(), 10);
  progress.OnAdvance([&](int) { context.control.RequestAbort(); });
  EXPECT_TRUE(DenoisePreview(context, request, result));
  EXPECT_TRUE(result.empty());
}

}  // namespace
}  // namespace mirellon::engine
