#include "engine/denoise_plane.h"

#include <gtest/gtest.h>

#include "engine/denoise_image.h"
#include "engine/fake_card.h"
#include "engine/noise_estimate.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

using test::FakeCard;

PicBuf Filtered(CardFilter* card) {
  EngineContext context;
  context.card = card;
  PicBuf source = test::PhotoLikePicture(21, 15, 1, 16, 1);
  PicBuf result(21, 15, 1, 16);
  EXPECT_EQ(DenoisePlane(context, result, source, {10.0, 1, 0.5, nullptr, 3.0, card != nullptr, 1}), 0);
  return result;
}

TEST(DenoisePlane, HandsTheCardPaddedPicturesItsGuideAndTheDoubledDynamics) {
  FakeCard card;
  card.readsNoiseLevels = true;
  const PicBuf result = Filtered(&card);
  const PicBuf source = test::PhotoLikePicture(21, 15, 1, 16, 1);
  ASSERT_EQ(card.planes.size(), 1U);
  EXPECT_EQ(card.widths, std::vector{22});
  EXPECT_EQ(card.guideSample, test::Sample(source, 0, 0) >> 8U);
  EXPECT_DOUBLE_EQ(card.planes[0].dynamicity, 1.0);
  EXPECT_DOUBLE_EQ(card.planes[0].noiseLevel, 3.0 / 1.05);
  EXPECT_TRUE(test::SamePicture(result, Filtered(nullptr)));
}

TEST(DenoisePlane, TheProcessorTakesWhatTheCardCannot) {
  FakeCard failing;
  failing.way = FakeCard::Way::kFails;
  FakeCard absent;
  absent.usable = false;
  const PicBuf expected = Filtered(nullptr);
  EXPECT_TRUE(test::SamePicture(Filtered(&failing), expected));
  EXPECT_TRUE(test::SamePicture(Filtered(&absent), expected));
  EXPECT_EQ(failing.jobs, 1);
  EXPECT_EQ(absent.jobs, 0);
}

TEST(DenoisePlane, OnlyAGivenNoiseLevelAboveZeroIsDivided) {
  const PicBuf guide = test::PhotoLikePicture(40, 40, 1, 8, 2);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(5.0, -0.5, guide), 5.0 / 1.05);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(0.0, 0.5, guide), 0.0);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(-1.0, 0.5, guide), EstimateNoiseLevel(guide));
}

TEST(DenoisePlane, TheCardGetsAllPlanesAtOnceWithTwiceTheNoiseLevelOfChrominance) {
  PicBuf source = test::PhotoLikePicture(20, 16, 3, 8, 5);
  PicBuf result;
  FakeCard card;
  card.readsNoiseLevels = true;
  EngineContext context;
  context.card = &card;
  DenoiseRequest request{&result.record(), &source.record()};
  request.useGpu = true;
  request.strengthChromaLarge = 1.0;
  request.noiseLevels[0] = 3.0;
  request.noiseLevels[1] = 5.0;
  ASSERT_EQ(DenoiseImage(context, request), 0);
  ASSERT_EQ(card.jobs, 1);
  ASSERT_EQ(card.colours.size(), 1U);
  EXPECT_EQ(card.colours[0].noiseLevel, 3.0);
  EXPECT_EQ(card.colours[0].noiseLevelChroma, 10.0);
  // The large-scale pass filters its level of U and V one by one.
  request.strengthChromaLarge = 2.0;
  ASSERT_EQ(DenoiseImage(context, request), 0);
  EXPECT_EQ(card.planes.size(), 2U);
}

}  // namespace
}  // namespace mirellon::engine
