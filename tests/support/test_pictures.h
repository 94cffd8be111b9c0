// Pictures for tests, the same on every machine.
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

#include "picture/pic_buf.h"

namespace mirellon::test {

// Small, fast and identical everywhere, unlike the standard distributions (splitmix64).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  [[nodiscard]] std::uint64_t Next();
  [[nodiscard]] int Below(int bound);  // 0 to bound - 1
  [[nodiscard]] double Unit();         // [0, 1)

 private:
  std::uint64_t state_;
};

// Every sample independent and uniform over the depth.
[[nodiscard]] picture::PicBuf RandomPicture(int width, int height, int components, int bits,
                                            std::uint64_t seed);
// Like a photograph: smooth shading, edges and texture with noise on top, so that weights of all sizes occur.
[[nodiscard]] picture::PicBuf PhotoLikePicture(int width, int height, int components, int bits,
                                               std::uint64_t seed);
[[nodiscard]] picture::PicBuf ConstantPicture(int width, int height, int components, int bits,
                                              unsigned value);

// Sample at (x, y), component c, whatever the depth (8 or 16).
[[nodiscard]] unsigned Sample(const picture::SBxPicBuf& picture, int x, int y, int c = 0);
void SetSample(picture::SBxPicBuf& picture, int x, int y, int c, unsigned value);

[[nodiscard]] picture::PicBuf CopyOf(const picture::SBxPicBuf& picture);

// The picture whose samples are sampleAt(x, y, component).
template <typename F>
[[nodiscard]] picture::PicBuf MadeOf(int width, int height, int components, int bits, F sampleAt) {
  picture::PicBuf picture(width, height, components, bits);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < components; ++c) SetSample(picture, x, y, c, sampleAt(x, y, c));
    }
  }
  return picture;
}

// Component c as a plane of its own.
[[nodiscard]] picture::PicBuf ComponentOf(const picture::SBxPicBuf& picture, int c);

// Equal geometry and samples; a failure names the first differing sample.
[[nodiscard]] ::testing::AssertionResult SamePicture(const picture::SBxPicBuf& actual,
                                                     const picture::SBxPicBuf& expected);

}  // namespace mirellon::test
