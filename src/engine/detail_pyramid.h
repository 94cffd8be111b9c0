// Strengthens or softens a picture's detail at three scales.
#pragma once

#include <array>
#include <cstdint>

#include "engine/pyramid_plane.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// A Laplacian pyramid of up to three reductions of every component. Lives from Build to Free (or its own
// death) and is applied once: Apply uses its Gaussian planes up.
struct DetailPyramid {
  static constexpr int kMaxLevels = 3;
  static constexpr int kMaxComponents = 3;

  std::uint32_t components = 0;
  std::uint32_t bitsPerComponent = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t levels = 0;  // reductions, 0 to 3
  std::array<std::uint32_t, kMaxLevels + 1> levelWidth{};
  std::array<std::uint32_t, kMaxLevels + 1> levelHeight{};
  std::array<std::array<FloatPlane, kMaxLevels + 1>, kMaxComponents> gauss;
  std::array<std::array<FloatPlane, kMaxLevels + 1>, kMaxComponents> detail;

  // True = failed (out of memory). The picture has 1 or 3 components of 8 or 16 bits.
  [[nodiscard]] static bool Build(DetailPyramid& pyramid, const picture::SBxPicBuf& picture);
  // Writes the picture rebuilt with each level's detail times its factor (tiny, medium, rough). True =
  // failed: the picture is not of the pyramid's depth and size, and is left alone. Factors all within 1e-5 of
  // 1 leave it alone too.
  [[nodiscard]] static bool Apply(picture::SBxPicBuf& picture, DetailPyramid& pyramid, double sharp1,
                                  double sharp2, double sharp3);
  // Releases every plane; false.
  static bool Free(DetailPyramid& pyramid);
};

// The whole step as every caller takes it: nothing to do when all factors are within 1e-5 of 1, else build,
// apply, free. Works on grey and colour, on up to `threads` threads. True = failed (out of memory), the
// picture is then left as it was. Needs 2.7 bytes a pixel beside the picture.
[[nodiscard]] bool SharpenPicture(picture::SBxPicBuf& picture, double sharp1, double sharp2, double sharp3,
                                  std::uint32_t threads = 1);

}  // namespace mirellon::engine
