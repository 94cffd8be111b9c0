#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "picture/pic_map.h"
#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

double WeighLinear(double distance) {
  return std::max(0.0, 1.0 - std::fabs(distance));
}

// The cubic convolution kernel with a = -0.5.
double WeighCubic(double distance) {
  const double d = std::fabs(distance);
  if (d < 1.0) return 1.5 * d * d * d - 2.5 * d * d + 1.0;
  if (d < 2.0) return -0.5 * d * d * d + 2.5 * d * d - 4.0 * d + 2.0;
  return 0.0;
}

// One way to resample, one kind of picture.
struct Kind {
  void (*transform)(SBxPicBuf&, const SBxPicBuf&, const CBxPicMap&);
  double (*weigh)(double distance);  // of a sample that far from the position; null for the nearest
  int components, bits;

  [[nodiscard]] PicBuf Random(int width, int height, unsigned seed) const {
    return test::RandomPicture(width, height, components, bits, seed);
  }
  [[nodiscard]] PicBuf Drawn(const SBxPicBuf& onto, const SBxPicBuf& source, const CBxPicMap& map) const {
    PicBuf drawn = test::CopyOf(onto);
    transform(drawn, source, map);
    return drawn;
  }

  // The value at a position, from kernel weights over every sample near it, in double precision.
  [[nodiscard]] double PlainValue(const SBxPicBuf& source, double x, double y, int c) const {
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    if (weigh == nullptr) return test::Sample(source, left, top, c);
    double sum = 0.0;
    for (int j = top - 3; j <= top + 3; ++j) {
      for (int i = left - 3; i <= left + 3; ++i) {
        sum +=
            weigh(i + 0.5 - x) * weigh(j + 0.5 - y) *
            test::Sample(source, std::clamp(i, 0, source.width - 1), std::clamp(j, 0, source.height - 1), c);
      }
    }
    return std::clamp(sum, 0.0, bits == 8 ? 255.0 : 65535.0);
  }

  // Every drawn sample within rounding of the plain value, everything else still as it was.
  void ExpectPlain(const SBxPicBuf& before, const SBxPicBuf& source, const CBxPicMap& map) const {
    const PicBuf drawn = Drawn(before, source, map);
    for (int i = 0; i < drawn->width * drawn->height * components; ++i) {
      const int c = i % components;
      const int x = i / components % drawn->width;
      const int y = i / components / drawn->width;
      CBxPoint<double> at{};
      map.MapPointDstToSrc(&at.x, &at.y, x, y);
      const bool inside = at.x >= 0 && at.x < source.width && at.y >= 0 && at.y < source.height;
      const double wanted = inside ? PlainValue(source, at.x, at.y, c) : test::Sample(before, x, y, c);
      const double tolerance = !inside ? 0.0 : bits == 8 ? 0.501 : 0.6;
      ASSERT_NEAR(test::Sample(drawn, x, y, c), wanted, tolerance) << x << ", " << y;
    }
  }
};

template <typename F>
void OnEveryKind(F check) {
  for (const auto& [components, bits] : {std::pair{1, 8}, {1, 16}, {3, 8}, {3, 16}}) {
    SCOPED_TRACE(::testing::Message() << components << "@" << bits);
    check(Kind{&CBxPicBufAPI::TransformConstantFast, nullptr, components, bits});
    check(Kind{&CBxPicBufAPI::TransformBilinearFast, &WeighLinear, components, bits});
    check(Kind{&CBxPicBufAPI::TransformBicubicFast, &WeighCubic, components, bits});
  }
}

TEST(Transform, EqualsKernelSumsAndBothWaysAgree) {
  OnEveryKind([](const Kind& kind) {
    test::Random random(17);
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {3, 5}, {40, 31}}) {
      const PicBuf source = kind.Random(width, height, 6);
      const PicBuf before = kind.Random(45, 38, 7);
      EXPECT_TRUE(test::SamePicture(kind.Drawn(kind.Random(width, height, 4), source, CBxPicMap()), source));
      // Positions on whole numbers: 0 is inside, the width and the height are not.
      kind.ExpectPlain(before, source, CBxPicMap(4.5, 3.5, 0, 0, 1, 0));
      kind.ExpectPlain(before, source, CBxPicMap(9.5, 8.5, width, height, 1, 0));
      for (int round = 0; round < 12; ++round) {
        const double from[] = {width * random.Unit(), height * random.Unit()};
        const double to[] = {45 * random.Unit(), 38 * random.Unit()};
        const double zoom = std::exp2(8 * random.Unit() - 3);
        const CBxPicMap upright(to[0], to[1], from[0], from[1], zoom, 0);
        kind.ExpectPlain(before, source, upright);
        kind.ExpectPlain(before, source, CBxPicMap(22, 19, from[0], from[1], zoom, 6.3 * random.Unit()));
        // Too small a turn to move anything, but one that takes the way of turned mappings.
        const CBxPicMap turned(to[0], to[1], from[0], from[1], zoom, 1e-300);
        ASSERT_TRUE(
            test::SamePicture(kind.Drawn(before, source, upright), kind.Drawn(before, source, turned)));
      }
    }
  });
}

TEST(Transform, BearsAnyMapping) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double values[] = {0.0, 3.5, -1e9, 1e18, 1e300, -1e300, 1e-300, infinity, -infinity, std::nan("")};
  OnEveryKind([&values](const Kind& kind) {
    const PicBuf source = test::ConstantPicture(7, 5, kind.components, kind.bits, 100);
    const PicBuf blank = test::ConstantPicture(9, 9, kind.components, kind.bits, 100);
    test::Random random(5);
    const auto any = [&] { return values[random.Below(10)]; };
    for (int i = 0; i < 2000; ++i) {
      // Nothing but the source's one value can have been drawn.
      const CBxPicMap map(any(), any(), any(), any(), any(), i % 2 * any());
      ASSERT_TRUE(test::SamePicture(kind.Drawn(blank, source, map), blank));
    }
  });
}

TEST(Transform, KeepsToTheRowsOfAPaddedPictureAndToItsKind) {
  OnEveryKind([](const Kind& kind) {
    const PicBuf source = kind.Random(30, 30, 8);
    const PicBuf before = kind.Random(13, 8, 9);
    const CBxPicMap map(5, 4, 15, 15, 1.7, 0);
    PicBuf expected = kind.Drawn(before, source, map);
    PicBuf drawn = test::CopyOf(before);
    CBxPicBufAPI::CopyRect(expected, drawn, {10, 0}, {10, 0}, {3, 8});
    SBxPicBuf window = drawn.record();
    window.width = 10;  // its first columns
    kind.transform(window, source, map);
    EXPECT_TRUE(test::SamePicture(drawn, expected));
    const PicBuf others[] = {PicBuf(6, 6, 4 - kind.components, kind.bits),
                             PicBuf(6, 6, kind.components, 24 - kind.bits), PicBuf()};
    for (const PicBuf& other : others) {
      EXPECT_TRUE(test::SamePicture(kind.Drawn(before, other, CBxPicMap()), before));
    }
  });
}

}  // namespace
}  // namespace mirellon::picture
