#include "picture/colour_convert.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "hwy/targets.h"
#include "picture/pic_buf.h"
#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

// Weights of the three components in, for each of those out.
using Weights = double[3][3];
constexpr Weights kToYuv = {{7471, 38470, 19595}, {32768, -21709, -11059}, {-5329, -27439, 32768}};
constexpr Weights kToBgr = {{65536, 116130, 0}, {65536, -22554, -46802}, {65536, 0, 91881}};

// The formulas in floating point: a sum of products is exact there, floor is the arithmetic shift.
PicBuf Plain(const SBxPicBuf& in, const Weights& weights, double middleIn, double middleOut) {
  return test::MadeOf(in.width, in.height, 3, in.bitsPerComponent, [&](int x, int y, int c) {
    double sum = 32768;
    for (int i = 0; i < 3; ++i) sum += weights[c][i] * (test::Sample(in, x, y, i) - (i == 0 ? 0 : middleIn));
    const double value = std::floor(sum / 65536) + (c == 0 ? 0 : middleOut);
    return static_cast<unsigned>(std::clamp(value, 0.0, in.bitsPerComponent == 8 ? 255.0 : 65535.0));
  });
}

// Every combination of the given samples.
void ExpectFormulas(int bits, const std::vector<unsigned>& samples) {
  const auto n = static_cast<int>(samples.size());
  const double middle = bits == 8 ? 128 : 32768;
  PicBuf in = test::MadeOf(n * n, n, 3, bits, [&](int x, int y, int c) {
    return samples[c == 0 ? y : c == 1 ? x / n : x % n];
  });
  PicBuf out = test::CopyOf(in);
  const PicBuf yuv = Plain(in, kToYuv, 0, middle);
  ASSERT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(out, in), 1);
  EXPECT_TRUE(test::SamePicture(out, yuv));
  ASSERT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(out, out), 1);  // in place
  EXPECT_TRUE(test::SamePicture(out, Plain(yuv, kToBgr, middle, 0)));
  ASSERT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(out, in), 1);  // colours that no picture has, too
  EXPECT_TRUE(test::SamePicture(out, Plain(in, kToBgr, middle, 0)));
  ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(in, static_cast<unsigned>(bits), 1), 1);
  EXPECT_TRUE(test::SamePicture(in, test::ComponentOf(yuv, 0)));
}

// Rows of every length around those of vectors, and by way of planes.
template <typename T>
void ExpectPlanesAsTriples() {
  for (const int width : {1, 3, 15, 16, 17, 31, 33, 64, 67, 130, 1023, 1025, 2100}) {
    PicBuf in = test::RandomPicture(width, 1, 3, 8 * sizeof(T), static_cast<std::uint64_t>(width));
    PicBuf triples = test::CopyOf(in);
    CBxPicBufAPI::ConvertRGBtoYUV(triples, in);
    std::vector<T> planes[3];
    for (std::vector<T>& plane : planes) plane.resize(static_cast<std::size_t>(width));
    ConvertRowRGBtoPlanes(Row<T>(in, 0), planes[0].data(), planes[1].data(), planes[2].data(), width);
    for (int c = 0; c < 3; ++c) {
      const PicBuf component = test::ComponentOf(triples, c);
      EXPECT_TRUE(std::equal(planes[c].begin(), planes[c].end(), Row<T>(component, 0))) << width;
    }
    CBxPicBufAPI::ConvertYUVtoRGB(triples, triples);
    ConvertRowPlanesToRGB(planes[0].data(), planes[1].data(), planes[2].data(), Row<T>(in, 0), width);
    EXPECT_TRUE(test::SamePicture(in, triples)) << width;
  }
}

TEST(ColourConvert, EqualsFormulasOnEverySimdTarget) {
  std::vector<unsigned> bytes = {1, 2, 127, 128, 129, 253, 254};
  for (unsigned v = 0; v < 256; v += 5) bytes.push_back(v);
  std::vector<unsigned> words = {0, 1, 2, 255, 256, 32766, 32767, 32768, 32769, 65279, 65533, 65534, 65535};
  test::Random random(3);
  for (int i = 0; i < 25; ++i) words.push_back(static_cast<unsigned>(random.Below(65536)));
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    ExpectFormulas(8, bytes);
    ExpectFormulas(16, words);
    ExpectPlanesAsTriples<std::uint8_t>();
    ExpectPlanesAsTriples<std::uint16_t>();
  }
  hwy::SetSupportedTargetsForTest(0);
}

}  // namespace
}  // namespace mirellon::picture
