#include "gpu/sample_transfer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "picture/pic_buf.h"

namespace mirellon::gpu {

namespace {

using picture::Row;
using picture::SBxPicBuf;

constexpr float kDeepScale = 0.00390625F;  // 1/256

template <typename T>
void Convert(const SBxPicBuf& picture, int channels, float scale, std::vector<float>& texels) {
  float* to = texels.data();
  const bool replicate = picture.components == 1 && channels == 3;
  for (int y = 0; y < picture.height; ++y) {
    const T* from = Row<T>(picture, y);
    const std::ptrdiff_t samples = std::ptrdiff_t{picture.width} * picture.components;
    if (!replicate) {
      to = std::transform(from, from + samples, to,
                          [scale](T sample) { return static_cast<float>(sample) * scale; });
      continue;
    }
    for (std::ptrdiff_t x = 0; x < samples; ++x) {
      to = std::fill_n(to, 3, static_cast<float>(from[x]) * scale);
    }
  }
}

// True = failed.
template <typename T>
bool Convert(const std::vector<float>& texels, float scale, float largest, SBxPicBuf& picture) {
  const float* from = texels.data();
  for (int y = 0; y < picture.height; ++y) {
    T* to = Row<T>(picture, y);
    for (int x = 0; x < picture.width; ++x, from += 3) {
      for (std::ptrdiff_t c = 0; c < picture.components; ++c) {
        const float rounded = from[c] * scale + 0.5F;
        if (!(rounded >= 0.0F)) return true;  // also what is not a number
        *to++ = static_cast<T>(std::min(rounded, largest));
      }
    }
  }
  return false;
}

}  // namespace

void TexelsOf(const SBxPicBuf& picture, int channels, std::vector<float>& texels) {
  texels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                static_cast<std::size_t>(channels));
  picture.bitsPerComponent == 8 ? Convert<std::uint8_t>(picture, channels, 1.0F, texels)
                                : Convert<std::uint16_t>(picture, channels, kDeepScale, texels);
}

bool SamplesOf(const std::vector<float>& texels, SBxPicBuf& picture) {
  return picture.bitsPerComponent == 8 ? Convert<std::uint8_t>(texels, 1.0F, 255.0F, picture)
                                       : Convert<std::uint16_t>(texels, 256.0F, 65535.0F, picture);
}

}  // namespace mirellon::gpu
