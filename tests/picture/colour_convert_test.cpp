#include "picture/colour_convert.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

// The formulas in floating point: a sum of products is exact there, floor is the arithmetic shift.
struct Depth {
  double middle;
  double largest;
};
constexpr Depth kEight = {128, 255};
constexpr Depth kSixteen = {32768, 65535};

template <typename T>
constexpr Depth kDepth = sizeof(T) == 1 ? kEight : kSixteen;

double Shifted(double sum) {
  return std::floor((sum + 32768) / 65536);
}

template <typename T>
T Clamped(double value) {
  return static_cast<T>(std::clamp(value, 0.0, kDepth<T>.largest));
}

template <typename T>
using Triple = std::array<T, 3>;

template <typename T>
Triple<T> PlainYuv(const Triple<T>& bgr) {
  const double b = bgr[0], g = bgr[1], r = bgr[2], m = kDepth<T>.middle;
  return {Clamped<T>(Shifted(19595 * r + 38470 * g + 7471 * b)),
          Clamped<T>(Shifted(-11059 * r - 21709 * g + 32768 * b) + m),
          Clamped<T>(Shifted(32768 * r - 27439 * g - 5329 * b) + m)};
}

template <typename T>
Triple<T> PlainBgr(const Triple<T>& yuv) {
  const double y = yuv[0], u = yuv[1] - kDepth<T>.middle, v = yuv[2] - kDepth<T>.middle;
  return {Clamped<T>(y + Shifted(116130 * u)), Clamped<T>(y + Shifted(-22554 * u - 46802 * v)),
          Clamped<T>(y + Shifted(91881 * v))};
}

// Converts a row of triples by the row functions; every pixel goes through a plain formula beside it.
template <typename T>
void ExpectFormulas(const std::vector<T>& triples) {
  const auto pixels = static_cast<int>(triples.size() / 3);
  std::vector<T> yuv(triples.size());
  std::vector<T> bgr(triples.size());
  std::vector<T> grey(triples.size() / 3);
  ConvertRowRGBtoYUV(triples.data(), yuv.data(), pixels);
  ConvertRowYUVtoRGB(triples.data(), bgr.data(), pixels);
  ConvertRowRGBtoY(triples.data(), grey.data(), pixels);
  for (std::size_t i = 0; i < triples.size(); i += 3) {
    const Triple<T> in = {triples[i], triples[i + 1], triples[i + 2]};
    const Triple<T> wantedYuv = PlainYuv(in);
    ASSERT_EQ((Triple<T>{yuv[i], yuv[i + 1], yuv[i + 2]}), wantedYuv)
        << in[0] << " " << in[1] << " " << in[2];
    ASSERT_EQ((Triple<T>{bgr[i], bgr[i + 1], bgr[i + 2]}), PlainBgr(in))
        << in[0] << " " << in[1] << " " << in[2];
    ASSERT_EQ(grey[i / 3], wantedYuv[0]);
  }
}

// Every combination of the given samples as triples.
template <typename T>
std::vector<T> Combinations(const std::vector<T>& samples) {
  std::vector<T> triples;
  for (const T a : samples) {
    for (const T b : samples) {
      for (const T c : samples) triples.insert(triples.end(), {a, b, c});
    }
  }
  return triples;
}

TEST(ColourConvert, EqualsFormulas) {
  std::vector<std::uint8_t> bytes;
  for (int v = 0; v < 256; v += 5) bytes.push_back(static_cast<std::uint8_t>(v));
  bytes.insert(bytes.end(), {1, 2, 127, 128, 129, 253, 254});
  ExpectFormulas(Combinations(bytes));

  std::vector<std::uint16_t> words = {0,     1,     2,     255,   256,   32766, 32767,
                                      32768, 32769, 65279, 65533, 65534, 65535};
  test::Random random(3);
  for (int i = 0; i < 25; ++i) words.push_back(static_cast<std::uint16_t>(random.Next()));
  ExpectFormulas(Combinations(words));
}

TEST(ColourConvert, EveryEightBitColourComesBackNearly) {
  int worst = 0;
  std::vector<std::uint8_t> row(std::size_t{3} * 256);
  for (int b = 0; b < 256; ++b) {
    for (int g = 0; g < 256; ++g) {
      for (std::size_t r = 0; r < 256; ++r) {
        row[3 * r] = static_cast<std::uint8_t>(b);
        row[3 * r + 1] = static_cast<std::uint8_t>(g);
        row[3 * r + 2] = static_cast<std::uint8_t>(r);
      }
      ConvertRowRGBtoYUV(row.data(), row.data(), 256);  // in place
      ConvertRowYUVtoRGB(row.data(), row.data(), 256);
      for (std::size_t r = 0; r < 256; ++r) {
        worst = std::max({worst, std::abs(row[3 * r] - b), std::abs(row[3 * r + 1] - g),
                          std::abs(row[3 * r + 2] - static_cast<int>(r))});
      }
    }
  }
  EXPECT_LE(worst, 2);
  EXPECT_GE(worst, 1);  // the rounding of U and V cannot be without loss
}

TEST(ColourConvert, GreyStaysGrey) {
  for (int v = 0; v < 65536; v += 1) {
    std::uint16_t triple[3] = {static_cast<std::uint16_t>(v), static_cast<std::uint16_t>(v),
                               static_cast<std::uint16_t>(v)};
    ConvertRowRGBtoYUV(triple, triple, 1);
    ASSERT_EQ(triple[0], v);
    ASSERT_EQ(triple[1], 32768);
    ASSERT_EQ(triple[2], 32768);
    ConvertRowYUVtoRGB(triple, triple, 1);
    ASSERT_EQ(triple[0], v);
    ASSERT_EQ(triple[1], v);
    ASSERT_EQ(triple[2], v);
  }
}

}  // namespace
}  // namespace mirellon::picture
