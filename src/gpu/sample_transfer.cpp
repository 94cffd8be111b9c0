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
void Convert(const SBxPicBuf& picture, float scale, std::vector<float>& texels) {
  float* to = texels.data();
  const std::ptrdiff_t samples = std::ptrdiff_t{picture.width} * picture.components;
  for (int y = 0; y < picture.height; ++y) {
    const T* from = Row<T>(picture, y);
    to = std::transform(from, from + samples, to,
                        [scale](T sample) { return static_cast<float>(sample) * scale; });
  }
}

// True = failed.
template <typename T>
bool Convert(const std::vector<float>& texels, float scale, float largest, SBxPicBuf& picture) {
  const float* from = texels.data();
  const std::ptrdiff_t samples = std::ptrdiff_t{picture.width} * picture.components;
  bool bad = false;
  for (int y = 0; y < picture.height; ++y) {
    T* to = Row<T>(picture, y);
    for (std::ptrdiff_t i = 0; i < samples; ++i) {
      const float rounded = from[i] * scale + 0.5F;
      const bool good = rounded >= 0.0F;  // what is not a number is not
      bad |= !good;
      to[i] = static_cast<T>(good ? std::min(rounded, largest) : 0.0F);
    }
    from += samples;
  }
  return bad;
}

}  // namespace

void TexelsOf(const SBxPicBuf& picture, std::vector<float>& texels) {
  texels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                static_cast<std::size_t>(picture.components));
  picture.bitsPerComponent == 8 ? Convert<std::uint8_t>(picture, 1.0F, texels)
                                : Convert<std::uint16_t>(picture, kDeepScale, texels);
}

bool SamplesOf(const std::vector<float>& texels, SBxPicBuf& picture) {
  return picture.bitsPerComponent == 8 ? Convert<std::uint8_t>(texels, 1.0F, 255.0F, picture)
                                       : Convert<std::uint16_t>(texels, 256.0F, 65535.0F, picture);
}

}  // namespace mirellon::gpu
