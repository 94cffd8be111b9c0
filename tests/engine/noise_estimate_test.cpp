#include "engine/noise_estimate.h"

#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;

// One neighbourhood at a time, with the start that drifts by one sample a row.
double PlainNoiseLevel(const PicBuf& plane) {
  const int W = plane->width, H = plane->height;
  if (H - 2 <= 1 || W <= 2) return 0.0;
  const unsigned char* A = plane->samples;
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

void ExpectPlain(const PicBuf& plane) {
  EXPECT_EQ(EstimateNoiseLevel(plane), PlainNoiseLevel(plane)) << plane->width << "x" << plane->height;
}

TEST(NoiseEstimate, EqualsPlainLoopOnEverySize) {
  for (int height = 1; height <= 12; ++height) {
    for (int width = 1; width <= 12; ++width)
      ExpectPlain(test::RandomPicture(width, height, 1, 8, 100U * width + height));
  }
  // Around the length of the runs that rows are worked on in.
  for (const int width : {2050, 2051, 2052, 4099, 4100, 5000})
    ExpectPlain(test::RandomPicture(width, 9, 1, 8, width));
}

// One bright sample at (4, 0), where no full neighbourhood of the first row begins, is seen by the drift of
// the second row alone: |255| / (12 * 3 * 3) * pi.
TEST(NoiseEstimate, DriftsByASampleARow) {
  PicBuf plane = test::ConstantPicture(5, 5, 1, 8, 0);
  test::SetSample(plane, 4, 0, 0, 255);
  EXPECT_EQ(EstimateNoiseLevel(plane), std::sqrt(255.0 / 108.0 * 3.14159265359));
  EXPECT_EQ(EstimateNoiseLevel(PicBuf()), 0.0);
}

TEST(NoiseEstimate, MeasuresPlanesOfAnEightBitYuvCopy) {
  for (const int bits : {8, 16}) {
    for (const unsigned components : {1U, 3U}) {
      const PicBuf picture = test::PhotoLikePicture(60, 41, static_cast<int>(components), bits, 5);
      PicBuf copy = test::CopyOf(picture);
      CBxPicBufAPI::ConvertBpcComp(copy, 8, components);
      if (components == 3) CBxPicBufAPI::ConvertRGBtoYUV(copy, copy);
      const auto level = [&copy](int c) { return PlainNoiseLevel(test::ComponentOf(copy, c)); };
      const MeasuredNoise noise = MeasureNoise(picture);
      EXPECT_FALSE(noise.failed);
      EXPECT_EQ(noise.luminance, level(0));
      EXPECT_EQ(noise.chrominance, components == 1 ? 0.0 : (level(1) + level(2)) / 2.0);
    }
  }
  EXPECT_TRUE(MeasureNoise(PicBuf()).failed);
}

}  // namespace
}  // namespace mirellon::engine
