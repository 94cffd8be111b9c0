// Every pass beside plain arithmetic on the same numbers.
#include "gpu/passes.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "gpu/gl_functions.h"
#include "gpu/open_card.h"
#include "support/test_pictures.h"

namespace mirellon::gpu {
namespace {

// Numbers by pixel and channel; channel 0 is x.
struct Field {
  int width = 0;
  int height = 0;
  std::vector<std::array<float, 3>> at;

  Field(int w, int h) : width(w), height(h), at(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}
  [[nodiscard]] std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  }
  std::array<float, 3>& operator()(int x, int y) { return at[Index(x, y)]; }
  const std::array<float, 3>& operator()(int x, int y) const { return at[Index(x, y)]; }
};

Field Read(const GpuFilter& filter, Texture texture) {
  const TextureShape& shape = filter.textures().ShapeNow(texture);
  Field field(shape.width, shape.height);
  filter.textures().Bind(texture, 0);
  glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_FLOAT, field.at.data());
  return field;
}

template <typename F>
Field Made(int width, int height, F numberAt) {
  Field field(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (std::size_t c = 0; c < 3; ++c) field(x, y)[c] = numberAt(x, y, c);
    }
  }
  return field;
}

// The largest difference relative to `scale`, in the channels that count.
double Largest(const Field& actual, const Field& expected, int channels, double scale = 1.0) {
  EXPECT_EQ(actual.at.size(), expected.at.size());
  double largest = 0.0;
  for (std::size_t i = 0; i < actual.at.size(); ++i) {
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
      const double difference = std::abs(static_cast<double>(actual.at[i][c]) - expected.at[i][c]) / scale;
      largest = difference <= largest ? largest : difference;  // also what is not a number
    }
  }
  return largest;
}

struct Case {
  int channels;
  int bits;
  double dynamics;
  FormatLimits formats;
};

class PassesTest : public ::testing::TestWithParam<Case> {};

constexpr int kWidth = 14;
constexpr int kHeight = 10;
constexpr int kMargin = 3;
constexpr int kBorder = kMargin + 3;
constexpr int kPaddedWidth = kWidth + 2 * kBorder;
constexpr int kPaddedHeight = kHeight + 2 * kBorder;

TEST_P(PassesTest, EqualPlainArithmetic) {
  const auto [channels, bits, dynamics, formats] = GetParam();
  test::OpenCard card({.formats = formats});
  ASSERT_USABLE(card);
  GpuFilter& filter = card.filter;
  const picture::PicBuf source = test::PhotoLikePicture(kPaddedWidth, kPaddedHeight, channels, bits, 3);
  picture::PicBuf guide = test::CopyOf(source);
  picture::CBxPicBufAPI::ConvertBpcComp(guide, 8, static_cast<unsigned>(channels));
  const GpuFilter::Job job(filter);
  ASSERT_FALSE(job.failed());
  ASSERT_FALSE(filter.Upload(source, guide, kWidth, kHeight, channels, kMargin, channels, bits));
  ASSERT_TRUE(filter.accumulatorPhase());

  // Component 0 of a picture lies in z; a grey one everywhere.
  const auto component = [channels = channels](std::size_t c) {
    return channels == 1 ? 0 : 2 - static_cast<int>(c);
  };
  const float scale = bits == 8 ? 1.0F : 1.0F / 256;
  const Field source3 = Made(kPaddedWidth, kPaddedHeight, [&](int x, int y, std::size_t c) {
    return static_cast<float>(test::Sample(source, x, y, component(c))) * scale;
  });
  const Field guide3 = Made(kPaddedWidth, kPaddedHeight, [&](int x, int y, std::size_t c) {
    return static_cast<float>(test::Sample(guide, x, y, component(c)));
  });
  EXPECT_EQ(Largest(Read(filter, kSource), source3, 3), 0.0);

  Field weightSum(kWidth, kHeight);
  Field valueSum(kWidth, kHeight);
  const WeightSettings settings = {5000.0, 9000.0, dynamics};
  for (const auto& [dy, dx] : {std::pair{-3, 2}, {-1, -3}, {-2, 0}, {0, -1}, {0, 0}}) {
    SCOPED_TRACE(std::to_string(dy) + " " + std::to_string(dx));
    filter.RenderDisplacement(dy, dx, settings);

    const Field difference =
        Made(kPaddedWidth, kPaddedHeight, [&, ddy = dy, ddx = dx](int x, int y, std::size_t c) {
          const bool inside =
              x + ddx >= 0 && x + ddx < kPaddedWidth && y + ddy >= 0 && y + ddy < kPaddedHeight;
          return inside ? std::abs(guide3(x, y)[c] - guide3(x + ddx, y + ddy)[c]) : 0.0F;
        });
    EXPECT_EQ(Largest(Read(filter, kDifference), difference, channels), 0.0);

    const Field half = Made(kPaddedWidth / 2, kPaddedHeight / 2, [&](int x, int y, std::size_t c) {
      return difference(2 * x, 2 * y)[c] + difference(2 * x + 1, 2 * y)[c] +
             difference(2 * x + 1, 2 * y + 1)[c] + difference(2 * x, 2 * y + 1)[c];
    });
    EXPECT_EQ(Largest(Read(filter, kHalfSum), half, channels), 0.0);

    const Field box = Made(half.width, half.height, [&](int x, int y, std::size_t c) {
      float sum = 0.0F;
      if (x < 1 || y < 1 || x > half.width - 2 || y > half.height - 2) return sum;
      for (int i = 0; i < 9; ++i) sum += half(x + i % 3 - 1, y + i / 3 - 1)[c];
      return sum;
    });
    EXPECT_EQ(Largest(Read(filter, kBoxSum), box, channels), 0.0);

    const Field weights =
        Made(kPaddedWidth, kPaddedHeight, [&, n = channels, dyn = dynamics](int x, int y, std::size_t c) {
          const std::size_t from = n == 1 ? 0 : c;
          const double s = box(x / 2, y / 2)[from];
          const double level = source3(x, y)[from];
          const double top = n == 1 ? 256.0 : 255.0;
          const double variance = n == 3 && c < 2 ? settings.varianceUV : settings.variance;
          const double spread = (dyn < 0 ? (top - level) * -dyn : level * dyn) / 256 + 1;
          return static_cast<float>(std::pow(2.718281828, -s * s * s / (spread * variance * 300)));
        });
    EXPECT_LT(Largest(Read(filter, kWeights), weights, filter.textures().ShapeNow(kWeights).channels), 2e-5);

    const bool centre = dy == 0 && dx == 0;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        for (std::size_t c = 0; c < 3; ++c) {
          const int px = x + kBorder;
          const int py = y + kBorder;
          const float here = weights(px, py)[c];
          const float back = centre ? 0.0F : weights(px - dx, py - dy)[c];
          weightSum(x, y)[c] += here + back;
          valueSum(x, y)[c] += here * source3(px + dx, py + dy)[c] + back * source3(px - dx, py - dy)[c];
        }
      }
    }
    const SumTextures sums = SumTexturesOf(filter.accumulatorPhase());
    EXPECT_LT(Largest(Read(filter, static_cast<Texture>(sums.weightsRead)), weightSum, 3), 1e-4);
    EXPECT_LT(Largest(Read(filter, static_cast<Texture>(sums.valuesRead)), valueSum, 3, 255.0), 1e-4);
  }

  picture::PicBuf result(kWidth, kHeight, channels, bits);
  ASSERT_FALSE(filter.ReadBack(result));
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      for (std::size_t c = 0; c < 3; ++c) {
        const double mean = valueSum(x, y)[c] / weightSum(x, y)[c] / scale;
        EXPECT_NEAR(test::Sample(result, x, y, component(c)), mean, bits == 8 ? 0.501 : 2.0);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pipelines, PassesTest,
                         ::testing::Values(Case{1, 8, 0.0, {}}, Case{1, 16, 1.5, {}}, Case{1, 8, -1.5, {}},
                                           Case{3, 8, 0.0, {}}, Case{3, 16, -1.5, {}}, Case{3, 8, 1.5, {}},
                                           Case{1, 16, -0.5, {.withoutLuminance = true}},
                                           Case{3, 8, 0.5, {.withoutLuminance = true}},
                                           Case{1, 8, 0.5, {.withoutRgb = true}},
                                           Case{3, 16, 0.5, {true, true}}));

// No pass uses them.
TEST(Programs, CopyWhatTheyRead) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const Programs& programs = card.filter.programs();
  const TileTextures& textures = card.filter.textures();
  const GpuFilter::Job job(card.filter);
  for (const int channels : {1, 3}) {
    const picture::PicBuf tile = test::RandomPicture(26, 22, channels, 8, 1);
    ASSERT_FALSE(card.filter.Upload(tile, tile, 14, 10, channels, kMargin, channels, 8));
    const Passes passes(programs, textures);
    passes.Clear(kSpare);  // makes it the target, too
    const Program copy = channels == 1 ? Program::kCopy1 : Program::kCopy3;
    programs.Use(copy);
    textures.Bind(kSource, 0);
    programs.SetSampler(copy, 0, 0);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {1.0F, 0.0F}, {1.0F, 1.0F}, {0.0F, 1.0F}}) {
      glMultiTexCoord2fARB(GL_TEXTURE0_ARB, x, y);
      glVertex2f(26 * x, 22 * y);
    }
    glEnd();
    glUseProgramObjectARB(0);
    Passes::Finish();
    EXPECT_EQ(Largest(Read(card.filter, kSpare), Read(card.filter, kSource), channels), 0.0);
    EXPECT_GT(Largest(Read(card.filter, kSpare), Field(26, 22), channels), 100.0);
  }
}

TEST(TileTextures, HaveTheirShapesAndStayWhileTheTileDoes) {
  const TileGeometry geometry = {100, 60, 35, 1};
  const auto shape = [&](std::size_t texture) {
    const TextureShape s = ShapeOf(texture, geometry);
    return std::tuple(s.width, s.height, s.channels);
  };
  EXPECT_EQ(shape(kSource), std::tuple(176, 136, 3));
  for (const Texture texture : {kGuide, kDifference, kWeights, kSpare}) {
    EXPECT_EQ(shape(texture), std::tuple(176, 136, 1));
  }
  EXPECT_EQ(shape(kHalfSum), std::tuple(88, 68, 1));
  EXPECT_EQ(shape(kBoxSum), std::tuple(88, 68, 1));
  for (const Texture texture : {kWeightSumA, kValueSumA, kWeightSumB, kValueSumB, kResult}) {
    EXPECT_EQ(shape(texture), std::tuple(100, 60, 3));
  }

  // A texture that nobody writes keeps what was put there until the shape changes.
  test::OpenCard card;
  ASSERT_USABLE(card);
  const GpuFilter::Job job(card.filter);
  const picture::PicBuf tile = test::RandomPicture(26, 22, 1, 8, 1);
  ASSERT_FALSE(card.filter.Upload(tile, tile, 14, 10, 1, kMargin, 1, 8));
  card.filter.textures().Fill(kSpare, std::vector<float>(std::size_t{26} * 22, 5.0F), 1);
  ASSERT_FALSE(card.filter.Upload(tile, tile, 14, 10, 1, kMargin, 1, 8));
  EXPECT_EQ(Read(card.filter, kSpare)(3, 3)[0], 5.0F);
  const picture::PicBuf other = test::RandomPicture(28, 22, 1, 8, 1);
  ASSERT_FALSE(card.filter.Upload(other, other, 16, 10, 1, kMargin, 1, 8));
  EXPECT_EQ(card.filter.textures().ShapeNow(kSpare).width, 28);
}

}  // namespace
}  // namespace mirellon::gpu
