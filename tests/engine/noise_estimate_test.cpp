#include "engine/noise_estimate.h"

#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// One neighbourhood at a time, with the start that drifts by one sample a row.
double PlainNoiseLevel(const SBxPicBuf& plane) {
  const int W = plane.width;
  const int H = plane.height;
  if (H - 2 <= 1 || W <= 2) return 0.0;
  const unsigned char* A = plane.samples;
  double S = 0.0;
  for (int r = 0; r <= H - 4; ++r) {
    for (int c = 0; c <= W - 4; ++c) {
      const int b = r * (W - 1) + c;
      const int response = A[b] - 2 * A[b + 1] + A[b + 2] - 2 * A[b + W] + 4 * A[b + W + 1] -
                           2 * A[b + W + 2] + A[b + 2 * W] - 2 * A[b + 2 * W + 1] + A[b + 2 * W + 2];
      S += std::abs(response);
    }
  }
  return std::sqrt(S / (12.0 * (W - 2) * (H - 2)) * 3.14159265359);
}

TEST(NoiseEstimate, EqualsPlainLoopOnEverySize) {
  for (int height = 1; height <= 12; ++height) {
    for (int width = 1; width <= 12; ++width) {
      const PicBuf plane = test::RandomPicture(width, height, 1, 8, 100U * width + height);
      EXPECT_EQ(EstimateNoiseLevel(plane), PlainNoiseLevel(plane)) << width << "x" << height;
    }
  }
  // Around the length of the runs that rows are worked on in.
  for (const int width : {2050, 2051, 2052, 4099, 4100, 5000}) {
    const PicBuf plane = test::RandomPicture(width, 9, 1, 8, width);
    EXPECT_EQ(EstimateNoiseLevel(plane), PlainNoiseLevel(plane)) << width;
  }
}

TEST(NoiseEstimate, KnownValues) {
  EXPECT_EQ(EstimateNoiseLevel(test::ConstantPicture(50, 40, 1, 8, 200)), 0.0);
  EXPECT_EQ(EstimateNoiseLevel(test::RandomPicture(50, 3, 1, 8, 1)), 0.0);
  EXPECT_EQ(EstimateNoiseLevel(PicBuf()), 0.0);

  // One bright sample in a corner is seen by the first neighbourhood alone: |255| / (12 * 3 * 3) * pi.
  PicBuf corner = test::ConstantPicture(5, 5, 1, 8, 0);
  test::SetSample(corner, 0, 0, 0, 255);
  EXPECT_EQ(EstimateNoiseLevel(corner), std::sqrt(255.0 / 108.0 * 3.14159265359));

  // At (4, 0), beyond the columns a full neighbourhood would have in the first row, the drift of the second
  // one picks it up as its first sample.
  PicBuf drift = test::ConstantPicture(5, 5, 1, 8, 0);
  test::SetSample(drift, 4, 0, 0, 255);
  EXPECT_EQ(EstimateNoiseLevel(drift), std::sqrt(255.0 / 108.0 * 3.14159265359));
}

TEST(NoiseEstimate, MeasuresPlanesOfAnEightBitYuvCopy) {
  for (const int bits : {8, 16}) {
    const PicBuf colour = test::PhotoLikePicture(60, 41, 3, bits, 5);
    PicBuf copy;
    CBxPicBufAPI::Copy(copy, colour);
    ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(copy, 8, 3), 1);
    ASSERT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(copy, copy), 1);
    double levels[3] = {};
    for (unsigned c = 0; c < 3; ++c) {
      PicBuf plane(copy.record(), 1);
      ASSERT_EQ(CBxPicBufAPI::ExtractComponent(plane, c, copy), 1);
      levels[c] = PlainNoiseLevel(plane);
      ASSERT_GT(levels[c], 0.0);
    }
    const MeasuredNoise noise = MeasureNoise(colour);
    EXPECT_FALSE(noise.failed);
    EXPECT_EQ(noise.luminance, levels[0]);
    EXPECT_EQ(noise.chrominance, (levels[1] + levels[2]) / 2.0);

    const PicBuf grey = test::PhotoLikePicture(60, 41, 1, bits, 6);
    CBxPicBufAPI::Copy(copy, grey);
    ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(copy, 8, 1), 1);
    const MeasuredNoise greyNoise = MeasureNoise(grey);
    EXPECT_FALSE(greyNoise.failed);
    EXPECT_EQ(greyNoise.luminance, PlainNoiseLevel(copy));
    EXPECT_EQ(greyNoise.chrominance, 0.0);
  }
  EXPECT_TRUE(MeasureNoise(PicBuf()).failed);
}

}  // namespace
}  // namespace mirellon::engine
