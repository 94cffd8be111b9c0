// The sample photograph: the same everywhere, noisy as stated, and worth denoising.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "engine/whole_picture.h"
#include "plain_math.h"
#include "sample_scene.h"
#include "sample_sensor.h"
#include "support/test_pictures.h"

namespace mirellon::tools {
namespace {

using picture::PicBuf;

struct Sample {
  PicBuf clean;
  PicBuf noisy;
};

void Store(PicBuf& picture, int x, int y, const Light& light) {
  test::SetSample(picture, x, y, 0, Develop(light.blue));
  test::SetSample(picture, x, y, 1, Develop(light.green));
  test::SetSample(picture, x, y, 2, Develop(light.red));
}

// A part of the scene, its corner at (left, top), with 1000 pixels a unit.
Sample Draw(double left, double top, int width, int height) {
  Sample sample{PicBuf(width, height, 3, 8), PicBuf(width, height, 3, 8)};
  std::uint64_t number = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Light light = SceneLight(left + (x + 0.5) * 0.001, top + (y + 0.5) * 0.001, 0.001);
      Store(sample.clean, x, y, light);
      Store(sample.noisy, x, y, Expose(light, Sensor(), number++, 7));
    }
  }
  return sample;
}

std::uint64_t Hash(const PicBuf& picture) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (int i = 0; i < picture->byteSize; ++i) hash = (hash ^ picture->samples[i]) * 0x100000001B3ULL;
  return hash;
}

double Psnr(const PicBuf& a, const PicBuf& b) {
  double sum = 0.0;
  for (int i = 0; i < a->byteSize; ++i) {
    const double difference = static_cast<double>(a->samples[i]) - static_cast<double>(b->samples[i]);
    sum += difference * difference;
  }
  return 10.0 * std::log10(255.0 * 255.0 * a->byteSize / sum);
}

TEST(PlainMathTest, AgreesWithTheLibrary) {
  for (int i = -500; i <= 500; ++i) {
    const double x = 0.0371 * i;
    EXPECT_NEAR(Exp2(x) / std::exp2(x), 1.0, 1e-12) << x;
    EXPECT_NEAR(Exp(x) / std::exp(x), 1.0, 1e-12) << x;
    EXPECT_NEAR(SineOfTurns(x), std::sin(x * 2.0 * 3.14159265358979323846), 1e-12) << x;
  }
  for (int i = -60; i <= 60; ++i) {
    const double x = std::pow(1.37, i);
    EXPECT_NEAR(Log2(x), std::log2(x), 1e-11) << x;
    EXPECT_NEAR(Power(x, 0.4167) / std::pow(x, 0.4167), 1.0, 1e-11) << x;
  }
  EXPECT_EQ(Power(0.0, 2.4), 0.0);
}

// A change of these numbers is a change of the sample photograph.
TEST(SampleTest, PixelsAreTheSameEverywhere) {
  const Sample sample = Draw(0.9, 1.05, 160, 120);
  EXPECT_EQ(Hash(sample.clean), 14097156444452097363ULL);
  EXPECT_EQ(Hash(sample.noisy), 1209586294652572665ULL);
}

TEST(SampleTest, NoiseIsPoissonAndGaussAsStated) {
  const Sensor sensor;
  constexpr int kDraws = 40000;
  // Few electrons, where they are counted one by one, and many, where the normal distribution stands in.
  for (const double level : {0.0, 0.01, 0.1, 0.2, 0.9}) {
    double sum = 0.0;
    double squares = 0.0;
    for (std::uint64_t pixel = 0; pixel < kDraws; ++pixel) {
      const double light = Expose({level, level, level}, sensor, pixel, 1).green;
      sum += light;
      squares += light * light;
    }
    const double mean = sum / kDraws;
    const double variance = squares / kDraws - mean * mean;
    const double white = sensor.white.green;
    const double expected = (level * white + sensor.readNoise * sensor.readNoise) / (white * white);
    EXPECT_NEAR(mean, level, 5.0 * std::sqrt(expected / kDraws));
    EXPECT_NEAR(variance / expected, 1.0, 0.05) << level;
  }
}

TEST(SampleTest, ChannelsAndNeighboursAreIndependent) {
  constexpr int kDraws = 40000;
  double channels = 0.0;
  double neighbours = 0.0;
  double variance = 0.0;
  for (std::uint64_t pixel = 0; pixel < kDraws; ++pixel) {
    const Light here = Expose({0.5, 0.5, 0.5}, Sensor(), pixel, 2);
    const Light next = Expose({0.5, 0.5, 0.5}, Sensor(), pixel + 1, 2);
    channels += (here.red - 0.5) * (here.green - 0.5);
    neighbours += (here.green - 0.5) * (next.green - 0.5);
    variance += (here.green - 0.5) * (here.green - 0.5);
  }
  EXPECT_LT(std::abs(channels / variance), 0.05);
  EXPECT_LT(std::abs(neighbours / variance), 0.05);
}

TEST(SampleTest, DenoisingGainsWhatTheDemonstrationShows) {
  // Sky and balloon, sign and meadow.
  const double corners[][2] = {{2.35, 0.20}, {1.30, 1.40}};
  for (const auto& corner : corners) {
    Sample sample = Draw(corner[0], corner[1], 300, 240);
    PicBuf denoised;
    engine::EngineContext context;
    engine::DenoiseRequest request;
    request.destination = &denoised.record();
    request.source = &sample.noisy.record();
    request.strength = 28.0;
    request.strengthChroma = 32.0;
    ASSERT_TRUE(engine::DenoiseWholePicture(context, request, false));
    const double before = Psnr(sample.clean, sample.noisy);
    const double after = Psnr(sample.clean, denoised);
    EXPECT_GT(after, before + 5.0) << before << " dB became " << after;
  }
}

}  // namespace
}  // namespace mirellon::tools
