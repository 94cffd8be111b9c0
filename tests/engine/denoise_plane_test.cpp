#include "engine/denoise_plane.h"

#include <optional>

#include <gtest/gtest.h>

#include "engine/noise_estimate.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using engine::CardFilter;
using engine::EngineContext;
using engine::PlaneJob;
using engine::PlaneSettings;
using picture::PicBuf;

// A card that inverts what it is given, and remembers the job.
class FakeCard : public CardFilter {
 public:
  [[nodiscard]] bool HardwareUsable() const override { return usable; }
  [[nodiscard]] int MaxTileSide() const override { return 1000; }
  [[nodiscard]] bool FilterPlane(const PlaneJob& job) override {
    last = job;
    guideSample = test::Sample(*job.guide, 0, 0);
    width = job.source->width;
    for (int i = 0; i < job.source->byteSize && !fail; ++i) {
      job.destination->samples[i] = static_cast<unsigned char>(~job.source->samples[i]);
    }
    return fail;
  }

  bool usable = true;
  bool fail = false;
  std::optional<PlaneJob> last;
  unsigned guideSample = 0;
  int width = 0;
};

struct PlaneRun {
  PicBuf result;
  PicBuf source;
};

PlaneRun RunPlane(CardFilter* card, double noiseLevel, double dynamics, bool useGpu) {
  EngineContext context;
  context.card = card;
  PlaneRun run{PicBuf(21, 15, 1, 16), test::PhotoLikePicture(21, 15, 1, 16, 1)};
  PlaneSettings settings;
  settings.quality = 1;
  settings.noiseLevel = noiseLevel;
  settings.dynamics = dynamics;
  settings.useGpu = useGpu;
  EXPECT_EQ(engine::DenoisePlane(context, run.result, run.source, settings), 0);
  return run;
}

TEST(DenoisePlane, HandsTheCardPaddedPicturesItsGuideAndTheDoubledDynamics) {
  FakeCard card;
  const PlaneRun run = RunPlane(&card, 3.0, 0.5, true);
  ASSERT_TRUE(card.last.has_value());
  EXPECT_EQ(card.width, 22);
  EXPECT_DOUBLE_EQ(card.last->dynamicity, 1.0);
  EXPECT_DOUBLE_EQ(card.last->noiseLevel, 3.0 / 1.05);
  EXPECT_EQ(card.guideSample, test::Sample(run.source, 0, 0) >> 8U);
  for (int y = 0; y < 15; ++y) {
    for (int x = 0; x < 21; ++x) {
      ASSERT_EQ(test::Sample(run.result, x, y), 65535U - test::Sample(run.source, x, y));
    }
  }
}

TEST(DenoisePlane, TheProcessorTakesWhatTheCardCannot) {
  FakeCard failing;
  failing.fail = true;
  FakeCard absent;
  absent.usable = false;
  const PicBuf expected = RunPlane(nullptr, -1.0, 0.0, false).result;
  EXPECT_TRUE(test::SamePicture(RunPlane(&failing, -1.0, 0.0, true).result, expected));
  EXPECT_TRUE(test::SamePicture(RunPlane(&absent, -1.0, 0.0, true).result, expected));
  EXPECT_TRUE(test::SamePicture(RunPlane(&absent, -1.0, 0.0, false).result, expected));
  EXPECT_FALSE(absent.last.has_value());
}

TEST(DenoisePlane, OnlyAGivenNoiseLevelAboveZeroIsDivided) {
  const PicBuf guide = test::PhotoLikePicture(40, 40, 1, 8, 2);
  EXPECT_DOUBLE_EQ(engine::EffectiveNoiseLevel(5.0, -0.5, guide), 5.0 / 1.05);
  EXPECT_DOUBLE_EQ(engine::EffectiveNoiseLevel(0.0, 0.5, guide), 0.0);
  EXPECT_DOUBLE_EQ(engine::EffectiveNoiseLevel(-1.0, 0.5, guide), engine::EstimateNoiseLevel(guide));
}

}  // namespace
}  // namespace mirellon
