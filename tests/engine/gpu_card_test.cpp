// The filter on the card beside the processor's.
#include "engine/gpu_card.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine/card_agreement.h"
#include "engine/card_jobs.h"
#include "engine/denoise_image.h"
#include "engine/denoise_plane.h"
#include "engine/whole_picture.h"
#include "engine/work_picture.h"
#include "gpu/open_card.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

struct Difference {
  double largest = 0.0;  // 8-bit steps
  double mean = 0.0;
};

Difference Between(const PicBuf& a, const PicBuf& b) {
  Difference difference;
  const double step = a->bitsPerComponent == 8 ? 1.0 : 256.0;
  for (int y = 0; y < a->height; ++y) {
    for (int x = 0; x < a->width; ++x) {
      for (int c = 0; c < a->components; ++c) {
        const double d =
            std::abs(static_cast<double>(test::Sample(a, x, y, c)) - test::Sample(b, x, y, c)) / step;
        difference.largest = std::max(difference.largest, d);
        difference.mean += d;
      }
    }
  }
  difference.mean /= static_cast<double>(a->width) * a->height * a->components;
  return difference;
}

struct Case {
  int width;
  int height;
  int components;
  int bits;
  std::uint32_t quality;
  double dynamics;
  double large;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
  return out << c.width << "x" << c.height << "x" << c.components << ", " << c.bits << " bits, quality "
             << c.quality << ", dynamics " << c.dynamics << ", large " << c.large;
}

class GpuCardTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_USABLE(card_); }

  static DenoiseRequest RequestOf(const Case& c, PicBuf& source, PicBuf& result, bool useGpu) {
    DenoiseRequest request{&result.record(), &source.record()};
    request.strength = request.strengthChroma = 30.0;
    request.quality = c.quality;
    request.dynamics = c.dynamics;
    request.strengthChromaLarge = c.large;
    request.useGpu = useGpu;
    return request;
  }

  test::OpenCard card_;
  GpuCard gpu_{card_.filter};
};

// Grey and colour, both depths, all qualities, dynamics of both signs; then the large-scale pass, tiny
// pictures, and those at and beyond the largest tile.
std::vector<Case> WholeFilterCases() {
  std::vector<Case> cases;
  for (const int components : {1, 3}) {
    for (const int bits : {8, 16}) {
      for (const std::uint32_t quality : {1U, 2U, 3U}) {
        for (const double dynamics : {-1.5, 0.0, 1.5}) {
          cases.push_back({63, 47, components, bits, quality, dynamics, 0.0});
        }
      }
    }
  }
  const Case others[] = {
      {96, 80, 1, 8, 1, 0.0, 0.0},    {96, 80, 1, 16, 2, 1.5, 0.0},  {96, 80, 1, 8, 3, 0.0, 0.0},
      {96, 80, 3, 8, 1, 0.0, 10.0},   {96, 80, 3, 8, 2, 0.0, 10.0},  {64, 48, 3, 16, 3, -1.5, 10.0},
      {61, 45, 1, 8, 1, 0.0, 0.0},    {61, 45, 3, 16, 3, 1.5, 10.0}, {1, 1, 3, 8, 2, 0.0, 10.0},
      {2, 3, 1, 16, 3, 0.0, 0.0},     {7, 5, 3, 16, 3, 0.5, 10.0},   {1, 5000, 1, 8, 1, 0.0, 0.0},
      {5000, 1, 3, 8, 1, 0.0, 0.0},   {999, 21, 1, 8, 1, 0.0, 0.0},  {1000, 21, 1, 16, 1, 0.0, 0.0},
      {21, 1001, 3, 8, 1, 0.0, 10.0}, {1017, 21, 3, 16, 1, 0.0, 0.0}};
  cases.insert(cases.end(), std::begin(others), std::end(others));
  return cases;
}

TEST_F(GpuCardTest, TheWholeFilterIsCloseToTheProcessors) {
  std::cout
      << "| picture | components | bits | quality | dynamics | large | largest | mean | filter itself |\n";
  for (const Case& c : WholeFilterCases()) {
    PicBuf source = test::PhotoLikePicture(c.width, c.height, c.components, c.bits, 7);
    PicBuf onCard;
    PicBuf onProcessor;
    EngineContext context;
    context.card = &gpu_;
    ASSERT_TRUE(DenoiseWholePicture(context, RequestOf(c, source, onCard, true), false));
    EXPECT_EQ(context.cardRun.fault, CardFault::kNone) << c;
    EXPECT_GE(context.cardRun.jobs, 1) << c;
    EXPECT_TRUE(context.cardRun.sampled);
    const double sampled = context.cardRun.sampleDifference;
    ASSERT_TRUE(DenoiseWholePicture(context, RequestOf(c, source, onProcessor, false), false));
    const Difference difference = Between(onCard, onProcessor);
    const Difference effect = Between(source, onProcessor);
    std::cout << "| " << c.width << " × " << c.height << " | " << c.components << " | " << c.bits << " | "
              << c.quality << " | " << c.dynamics << " | " << c.large << std::fixed << std::setprecision(2)
              << " | " << difference.largest << " | " << difference.mean << " | " << effect.mean << " |\n"
              << std::defaultfloat;
    EXPECT_LE(sampled, 0.1 + 0.3 * effect.mean) << c;
    // Where the processor's border is odd, its blocks of weights lie across those of distances; in the
    // tiniest pictures the zeros beside an odd side are everywhere.
    const bool across = BorderOf(c.width + c.width % 2, c.height + c.height % 2, 10) % 2 != 0;
    const bool apart = across || std::max(c.width, c.height) < 10;
    EXPECT_LE(difference.mean, 0.1 + (apart ? 0.25 : 0.15) * effect.mean) << c;
    EXPECT_LE(difference.largest, apart ? 60.0 : 30.0) << c;
  }
}

// The card's own arithmetic, in doubles: weights chosen by the pixel's level, those of the opposite
// displacement read at the displaced pixel.
std::vector<double> PlainFilter(const PlaneJob& job) {
  const picture::SBxPicBuf& tile = *job.source;
  const double scale = tile.bitsPerComponent == 8 ? 1.0 : 256.0;
  const int half = job.quality == 1 ? 3 : (job.quality == 2 ? 6 : 10);
  const int border = CardMargin(tile.width, tile.height, job.quality) + 3;
  const int width = tile.width + 2 * border;
  const int height = tile.height + 2 * border;
  const auto mirrored = [](int i, int side) {
    while (i < 0 || i >= side) i = i < 0 ? -i : 2 * (side - 1) - i;
    return i;
  };
  const auto place = [width](int x, int y) {
    return static_cast<std::size_t>(std::ptrdiff_t{y} * width + x);
  };
  std::vector<double> level(place(0, height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      level[place(x, y)] =
          test::Sample(tile, mirrored(x - border, tile.width), mirrored(y - border, tile.height)) / scale;
    }
  }
  const double variance = std::pow(job.strength, 3.5) * 300;
  std::vector<double> weights(level.size());
  std::vector<double> values(level.size());
  for (int dy = -half; dy <= 0; ++dy) {
    for (int dx = -half; dx <= (dy == 0 ? 0 : half); ++dx) {
      std::vector<double> halves(level.size());
      const auto block = [&](int x, int y) -> double& { return halves[place(x / 2, y / 2)]; };
      for (int y = -dy; y < height; ++y) {
        for (int x = std::max(0, -dx); x < width - std::max(0, dx); ++x) {
          block(x, y) += std::abs(std::floor(level[place(x, y)]) - std::floor(level[place(x + dx, y + dy)]));
        }
      }
      const auto weight = [&](int x, int y) {
        double s = 0.0;
        for (int i = 0; i < 9; ++i) s += block(x + 2 * (i % 3 - 1), y + 2 * (i / 3 - 1));
        const double l = level[place(x, y)];
        const double spread =
            (job.dynamicity < 0 ? (256.0 - l) * -job.dynamicity : l * job.dynamicity) / 256 + 1;
        return std::pow(2.718281828, -s * s * s / (spread * variance));
      };
      for (int y = border; y < height - border; ++y) {
        for (int x = border; x < width - border; ++x) {
          const double there = weight(x, y);
          const double back = dy == 0 && dx == 0 ? 0.0 : weight(x - dx, y - dy);
          weights[place(x, y)] += there + back;
          values[place(x, y)] += there * level[place(x + dx, y + dy)] + back * level[place(x - dx, y - dy)];
        }
      }
    }
  }
  std::vector<double> result;
  for (int y = border; y < height - border; ++y) {
    for (int x = border; x < width - border; ++x) {
      result.push_back(values[place(x, y)] / weights[place(x, y)] * scale);
    }
  }
  return result;
}

TEST_F(GpuCardTest, ThePlaneFilterIsItsDefinitionInPlainArithmetic) {
  for (const auto& [width, height, bits, quality, dynamicity] : {std::tuple{62, 46, 8, 1U, 0.0},
                                                                 {96, 80, 8, 2U, 3.0},
                                                                 {62, 46, 16, 2U, -3.0},
                                                                 {80, 72, 8, 3U, -1.0},
                                                                 {64, 50, 16, 3U, 2.0},
                                                                 {4, 30, 16, 1U, 0.5}}) {
    const PicBuf source = test::PhotoLikePicture(width, height, 1, bits, quality);
    PicBuf guide = test::CopyOf(source);
    picture::CBxPicBufAPI::ConvertBpcComp(guide, 8, 1);
    PicBuf result(width, height, 1, bits);
    const PlaneJob job{&result.record(), &source.record(), &guide.record(), 30.0, quality, dynamicity};
    ASSERT_FALSE(gpu_.FilterPlane(job));
    const std::vector<double> expected = PlainFilter(job);
    double largest = 0.0;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const double e = expected[static_cast<std::size_t>(std::ptrdiff_t{y} * width + x)];
        largest = std::max(largest, std::abs(test::Sample(result, x, y) - e));
      }
    }
    std::cout << width << " x " << height << ", " << bits << " bits, quality " << quality
              << ": largest difference from plain arithmetic " << largest << "\n";
    EXPECT_LE(largest, bits == 8 ? 0.51 : 2.0);  // rounding, and floats of 24 bits
  }
}

// A strength so high that all weights are one leaves the plain average of the window, clipped nowhere but
// mirrored at the edges.
TEST_F(GpuCardTest, WithAllWeightsOneItIsTheAverageOfTheWindow) {
  constexpr int kSide = 40;
  for (const auto& [quality, half] : {std::pair{1U, 3}, {2U, 6}, {3U, 10}}) {
    const PicBuf source = test::RandomPicture(kSide, kSide, 1, 8, quality);
    PicBuf result(kSide, kSide, 1, 8);
    const PlaneJob job{&result.record(), &source.record(), &source.record(), 1e8, quality};
    ASSERT_FALSE(gpu_.FilterPlane(job));
    const auto mirrored = [](int i) { return i < 0 ? -i : (i >= kSide ? 2 * (kSide - 1) - i : i); };
    for (const auto& [x, y] : {std::pair{0, 0}, {20, 17}, {39, 1}, {13, 39}}) {
      double sum = 0.0;
      for (int dy = -half; dy <= half; ++dy) {
        for (int dx = -half; dx <= half; ++dx)
          sum += test::Sample(source, mirrored(x + dx), mirrored(y + dy));
      }
      const int window = 2 * half + 1;
      EXPECT_NEAR(test::Sample(result, x, y), sum / (window * window), 0.51);
    }
  }
}

// The border holds all that the window reaches: what lies further out must not matter.
TEST_F(GpuCardTest, AWiderBorderChangesNothing) {
  for (const std::uint32_t quality : {1U, 2U, 3U}) {
    const PicBuf tile = test::PhotoLikePicture(60, 40, 1, 16, quality);
    const int half = quality == 1 ? 3 : (quality == 2 ? 6 : 10);
    std::vector<PicBuf> results;
    for (const int wider : {0, 2}) {
      const int margin = CardMargin(60, 40, quality) + wider;
      const int border = margin + 3;
      const PicBuf padded = test::MadeOf(20 + 2 * border, 8 + 2 * border, 1, 16, [&](int x, int y, int) {
        return test::Sample(tile, x + 20 - border, y + 16 - border);
      });
      PicBuf guide = test::CopyOf(padded);
      picture::CBxPicBufAPI::ConvertBpcComp(guide, 8, 1);
      const gpu::GpuFilter::Job use(card_.filter);
      ASSERT_FALSE(card_.filter.Upload(padded, guide, 20, 8, 1, margin, 1, 16));
      for (int row = -half; row <= 0; ++row) {
        for (int column = -half; column <= (row == 0 ? 0 : half); ++column) {
          card_.filter.RenderDisplacement(row, column, {1e5, 0.0, 1.0});
        }
      }
      ASSERT_FALSE(card_.filter.ReadBack(results.emplace_back(20, 8, 1, 16)));
    }
    EXPECT_TRUE(test::SamePicture(results[0], results[1])) << quality;
  }
}

TEST_F(GpuCardTest, StrengthZeroKeepsThePicture) {
  PicBuf source = test::PhotoLikePicture(40, 30, 3, 8, 7);
  PicBuf result;
  PicBuf expected;
  EngineContext context;
  context.card = &gpu_;
  DenoiseRequest request = RequestOf({40, 30, 3, 8, 1, 0.0, 0.0}, source, result, true);
  request.strength = request.strengthChroma = 0.0;
  ASSERT_TRUE(DenoiseWholePicture(context, request, false));
  EXPECT_EQ(context.cardRun.fault, CardFault::kNone);
  request.useGpu = false;
  request.destination = &expected.record();
  ASSERT_TRUE(DenoiseWholePicture(context, request, false));
  EXPECT_TRUE(test::SamePicture(result, expected));
}

TEST_F(GpuCardTest, StepsOncePerDisplacementAndStopsBetweenThem) {
  const PicBuf source = test::RandomPicture(16, 16, 1, 8, 1);
  PicBuf result(16, 16, 1, 8);
  for (const auto& [quality, steps] : {std::pair{1U, 25}, {2U, 85}, {4U, 221}}) {
    test::RecordingProgress progress;
    const PlaneJob job{&result.record(), &source.record(), &source.record(), 10.0, quality, 0.0, &progress};
    EXPECT_FALSE(gpu_.FilterPlane(job));
    EXPECT_EQ(progress.position(), steps);
  }
  base::RunControl control;
  test::RecordingProgress progress;
  progress.OnAdvance([&](int position) {
    if (position == 7) control.RequestAbort();
  });
  result = test::ConstantPicture(16, 16, 1, 8, 77);
  const PlaneJob job{&result.record(), &source.record(), &source.record(), 10.0, 1, 0.0, &progress, 0.0,
                     &control};
  EXPECT_FALSE(gpu_.FilterPlane(job));
  EXPECT_EQ(progress.position(), 7);
  EXPECT_TRUE(test::SamePicture(result, test::ConstantPicture(16, 16, 1, 8, 77)));
}

TEST_F(GpuCardTest, TilesAreCutAtTheLimitAndLeaveNoSeams) {
  for (const auto& [width, height, jobs] : {std::tuple{999, 20, 1}, {1000, 20, 1}, {20, 1001, 2}}) {
    PicBuf source = test::PhotoLikePicture(width, height, 1, 8, 3);
    PicBuf tiled;
    PicBuf whole;
    EngineContext context;
    context.card = &gpu_;
    DenoiseRequest request = RequestOf({width, height, 1, 8, 1, 0.0, 0.0}, source, tiled, true);
    ASSERT_TRUE(DenoiseWholePicture(context, request, false));
    EXPECT_EQ(context.cardRun.jobs, jobs);
    request.destination = &whole.record();
    ASSERT_EQ(DenoiseImage(context, request), 0);
    EXPECT_LE(Between(tiled, whole).largest, 1.0);  // floats, divided elsewhere
  }
}

TEST_F(GpuCardTest, AgreesWithTheProcessor) {
  const CardAgreement agreement = TestCardAgreement(gpu_);
  std::cout << "agreement test: largest difference " << agreement.largestDifference << "\n";
  EXPECT_TRUE(agreement.answered && agreement.passed);
  EXPECT_LE(agreement.largestDifference, 2);
}

}  // namespace
}  // namespace mirellon::engine
