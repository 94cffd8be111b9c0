#include "bench_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace mirellon::bench {

namespace {

// Sum of four uniform numbers: nearly normal, mean 0, standard deviation 1.
class Noise {
 public:
  double Next() {
    double sum = -2.0;
    for (int i = 0; i < 4; ++i) {
      state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
      sum += static_cast<double>(state_ >> 40U) * 0x1.0p-24;
    }
    return sum * std::sqrt(3.0);
  }

 private:
  std::uint64_t state_ = 2026;
};

double Scene(int x, int y, int c) {
  double level = 0.35 + 0.25 * std::sin(x * 0.0031 + c) * std::cos(y * 0.0043);
  if ((x / 173 + y / 131) % 4 == 0) level += 0.2;
  if ((x / 61) % 7 == 3) level += 0.05 * std::sin(x * 1.1) * std::sin(y * 0.9);
  return level;
}

}  // namespace

picture::PicBuf NoisyPicture(int width, int height, int components, int bits) {
  picture::PicBuf picture(width, height, components, bits);
  const double largest = bits == 8 ? 255.0 : 65535.0;
  Noise noise;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < components; ++c) {
        const double value = std::clamp((Scene(x, y, c) + 0.02 * noise.Next()) * largest, 0.0, largest);
        const int index = x * components + c;
        if (bits == 8) {
          picture::Row<std::uint8_t>(picture, y)[index] = static_cast<std::uint8_t>(value);
        } else {
          picture::Row<std::uint16_t>(picture, y)[index] = static_cast<std::uint16_t>(value);
        }
      }
    }
  }
  return picture;
}

}  // namespace mirellon::bench
