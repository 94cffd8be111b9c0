#include "support/test_pictures.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace mirellon::test {

using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

std::uint64_t Random::Next() {
  state_ += 0x9E3779B97F4A7C15ULL;
  std::uint64_t z = state_;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31U);
}

int Random::Below(int bound) {
  return static_cast<int>(Next() % static_cast<std::uint64_t>(bound));
}

double Random::Unit() {
  return static_cast<double>(Next() >> 11U) * 0x1.0p-53;
}

unsigned Sample(const SBxPicBuf& picture, int x, int y, int c) {
  const int index = x * picture.components + c;
  return picture.bitsPerComponent == 8 ? Row<std::uint8_t>(picture, y)[index]
                                       : Row<std::uint16_t>(picture, y)[index];
}

void SetSample(SBxPicBuf& picture, int x, int y, int c, unsigned value) {
  const int index = x * picture.components + c;
  if (picture.bitsPerComponent == 8) {
    Row<std::uint8_t>(picture, y)[index] = static_cast<std::uint8_t>(value);
  } else {
    Row<std::uint16_t>(picture, y)[index] = static_cast<std::uint16_t>(value);
  }
}

PicBuf RandomPicture(int width, int height, int components, int bits, std::uint64_t seed) {
  PicBuf picture(width, height, components, bits);
  Random random(seed);
  for (int i = 0; i < picture->byteSize; ++i) picture->samples[i] = static_cast<unsigned char>(random.Next());
  return picture;
}

PicBuf PhotoLikePicture(int width, int height, int components, int bits, std::uint64_t seed) {
  Random random(seed);
  const double largest = bits == 8 ? 255.0 : 65535.0;
  return MadeOf(width, height, components, bits, [&](int x, int y, int c) {
    double level = 0.15 + 0.6 * (x + 2.0 * y) / (width + 2.0 * height);
    if ((x / 13 + y / 17 + c) % 3 == 0) level += 0.2;
    level += 0.03 * std::sin(0.9 * x) * std::cos(0.7 * y);
    const double noise = (random.Unit() + random.Unit() + random.Unit() - 1.5) * 0.08;
    return static_cast<unsigned>(std::clamp((level + noise) * largest, 0.0, largest));
  });
}

PicBuf ConstantPicture(int width, int height, int components, int bits, unsigned value) {
  return MadeOf(width, height, components, bits, [value](int, int, int) { return value; });
}

PicBuf CopyOf(const SBxPicBuf& picture) {
  PicBuf copy;
  picture::CBxPicBufAPI::Copy(copy, picture);
  return copy;
}

PicBuf ComponentOf(const SBxPicBuf& picture, int c) {
  return MadeOf(picture.width, picture.height, 1, picture.bitsPerComponent,
                [&](int x, int y, int) { return Sample(picture, x, y, c); });
}

::testing::AssertionResult SamePicture(const SBxPicBuf& actual, const SBxPicBuf& expected) {
  const auto shape = [](const SBxPicBuf& picture) {
    return std::array{picture.width, picture.height, picture.components, picture.bitsPerComponent};
  };
  if (shape(actual) != shape(expected) || actual.samples == nullptr || expected.samples == nullptr) {
    return ::testing::AssertionFailure() << "geometry " << ::testing::PrintToString(shape(actual))
                                         << " against " << ::testing::PrintToString(shape(expected));
  }
  int differing = 0;
  ::testing::AssertionResult failure = ::testing::AssertionFailure();
  for (int y = 0; y < actual.height; ++y) {
    for (int i = 0; i < actual.width * actual.components; ++i) {
      const int x = i / actual.components;
      const int c = i % actual.components;
      const unsigned got = Sample(actual, x, y, c);
      const unsigned wanted = Sample(expected, x, y, c);
      if (got == wanted || differing++ > 0) continue;
      failure << "(" << x << ", " << y << ") component " << c << ": " << got << " instead of " << wanted;
    }
  }
  if (differing == 0) return ::testing::AssertionSuccess();
  return failure << "; " << differing << " samples differ";
}

}  // namespace mirellon::test
