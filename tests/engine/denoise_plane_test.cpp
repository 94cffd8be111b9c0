#include "engine/denoise_plane.h"

#include <vector>

#include <gtest/gtest.h>

#include "engine/denoise_image.h"
#include "engine/noise_estimate.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

// A card that inverts what it is given, or fails, and remembers the jobs (but not their pictures).
struct FakeCard : public CardFilter {
  FakeCard(bool isUsable, bool isFailing) : usable(isUsable), failing(isFailing) {}
  [[nodiscard]] bool HardwareUsable() const override { return usable; }
  [[nodiscard]] int MaxTileSide() const override { return 1000; }
  [[nodiscard]] bool FilterPlane(const PlaneJob& job) override {
    jobs.push_back(job);
    width = job.source->width;
    guideSample = test::Sample(*job.guide, 0, 0);
    for (int i = 0; i < job.source->byteSize && !failing; ++i) {
      job.destination->samples[i] = static_cast<unsigned char>(~job.source->samples[i]);
    }
    return failing;
  }

  bool usable, failing;
  std::vector<PlaneJob> jobs;
  int width = 0;
  unsigned guideSample = 0;
};

PicBuf Filtered(CardFilter* card) {
  EngineContext context;
  context.card = card;
  PicBuf source = test::PhotoLikePicture(21, 15, 1, 16, 1);
  PicBuf result(21, 15, 1, 16);
  EXPECT_EQ(DenoisePlane(context, result, source, {10.0, 1, 0.5, nullptr, 3.0, card != nullptr, 1}), 0);
  return result;
}

TEST(DenoisePlane, HandsTheCardPaddedPicturesItsGuideAndTheDoubledDynamics) {
  FakeCard card(true, false);
  const PicBuf result = Filtered(&card);
  PicBuf expected = test::PhotoLikePicture(21, 15, 1, 16, 1);
  ASSERT_EQ(card.jobs.size(), 1U);
  EXPECT_EQ(card.width, 22);
  EXPECT_EQ(card.guideSample, test::Sample(expected, 0, 0) >> 8U);
  EXPECT_DOUBLE_EQ(card.jobs[0].dynamicity, 1.0);
  EXPECT_DOUBLE_EQ(card.jobs[0].noiseLevel, 3.0 / 1.05);
  for (int i = 0; i < expected->byteSize; ++i) expected->samples[i] ^= 0xFFU;
  EXPECT_TRUE(test::SamePicture(result, expected));
}

TEST(DenoisePlane, TheProcessorTakesWhatTheCardCannot) {
  FakeCard failing(true, true);
  FakeCard absent(false, false);
  const PicBuf expected = Filtered(nullptr);
  EXPECT_TRUE(test::SamePicture(Filtered(&failing), expected));
  EXPECT_TRUE(test::SamePicture(Filtered(&absent), expected));
  EXPECT_TRUE(absent.jobs.empty());
}

TEST(DenoisePlane, OnlyAGivenNoiseLevelAboveZeroIsDivided) {
  const PicBuf guide = test::PhotoLikePicture(40, 40, 1, 8, 2);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(5.0, -0.5, guide), 5.0 / 1.05);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(0.0, 0.5, guide), 0.0);
  EXPECT_DOUBLE_EQ(EffectiveNoiseLevel(-1.0, 0.5, guide), EstimateNoiseLevel(guide));
}

TEST(DenoisePlane, TheColourPipelineDoublesTheNoiseLevelOfChrominance) {
  PicBuf source = test::PhotoLikePicture(20, 16, 3, 8, 5);
  PicBuf result;
  FakeCard card(true, false);
  EngineContext context;
  context.card = &card;
  DenoiseRequest request{&result.record(), &source.record()};
  request.useGpu = true;
  request.strengthChromaLarge = 1.0;
  request.noiseLevels[0] = 3.0;
  request.noiseLevels[1] = 5.0;
  ASSERT_EQ(DenoiseImage(context, request), 0);
  ASSERT_EQ(card.jobs.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(card.jobs[i].noiseLevel, i == 0 ? 3.0 : 10.0);
}

}  // namespace
}  // namespace mirellon::engine
