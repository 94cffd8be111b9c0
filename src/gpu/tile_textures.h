// The twelve textures that a tile lives in on the card.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirellon::gpu {

// What the textures hold. Sizes: P = padded tile, Q = half of it, T = the tile alone.
enum Texture : std::uint8_t {
  kSource = 0,      // P, three channels: the padded tile
  kGuide = 1,       // P: what similarity is measured on
  kDifference = 2,  // P: between the guide and its displaced self
  kHalfSum = 3,     // Q: sums of 2 x 2 differences
  kBoxSum = 4,      // Q: sums of 3 x 3 half sums
  kSpare = 5,       // P; no pass uses it
  kWeightSumA = 6,  // T, three channels
  kValueSumA = 7,   // T, three channels
  kWeightSumB = 8,  // T, three channels
  kValueSumB = 9,   // T, three channels
  kWeights = 10,    // P: of the current displacement
  kResult = 11,     // T, three channels: the division
};
inline constexpr std::size_t kTextureCount = 12;

struct TileGeometry {
  int width = 0;     // of the tile, without its border; even
  int height = 0;    // even
  int margin = 0;    // the border on each side is margin + 3 pixels wide
  int channels = 3;  // 1: textures 1 to 5 and 10 have one channel; 3: all have three

  [[nodiscard]] int Border() const { return margin + 3; }
  [[nodiscard]] int PaddedWidth() const { return width + 2 * margin + 6; }
  [[nodiscard]] int PaddedHeight() const { return height + 2 * margin + 6; }
  [[nodiscard]] bool operator==(const TileGeometry&) const = default;
};

struct TextureShape {
  int width = 0;
  int height = 0;
  int channels = 0;
};
[[nodiscard]] TextureShape ShapeOf(std::size_t texture, const TileGeometry& geometry);

// Texel formats, chosen once for a card.
struct TexelFormat {
  std::uint32_t internal = 0;  // GL's constant
  std::uint32_t data = 0;      // of what is uploaded
  const char* name = "";       // "GL_LUMINANCE32F_ARB"
};
// For tests of what only some cards lack.
struct FormatLimits {
  bool withoutLuminance = false;
  bool withoutRgb = false;
};
struct TextureFormats {
  TexelFormat one;
  TexelFormat three;
  // Whether a read of a one-channel texture gives the value in x alone. Textures that are read in x, y and z
  // then have three channels.
  bool oneIsRed = false;
};

// Names of GL objects: every function but those that only ask needs the context that they belong to.
class TileTextures {
 public:
  void Generate();
  void Release();

  // Finds formats that this card can draw to: luminance and RGB, else red and RGBA. The frame buffer object
  // must be bound. True = failed: there are none.
  [[nodiscard]] bool ChooseFormats(const FormatLimits& limits);

  // Makes the textures of a tile, unless they have its sizes already; contents undefined. True = failed: the
  // card has no room for them; they are made anew next time.
  [[nodiscard]] bool Shape(const TileGeometry& geometry);
  // Makes them anew next time.
  void Forget() { geometry_ = {}; }

  // Rows of the texture's size without gaps, `channels` numbers a texel: three in the order z, y, x; one goes
  // into all channels that there are.
  void Fill(std::size_t texture, const std::vector<float>& texels, int channels) const;

  void Bind(std::size_t texture, int unit) const;
  [[nodiscard]] std::uint32_t Name(std::size_t texture) const { return names_[texture]; }
  [[nodiscard]] const std::array<std::uint32_t, kTextureCount>& names() const { return names_; }
  [[nodiscard]] const TextureShape& ShapeNow(std::size_t texture) const { return shapes_[texture]; }
  [[nodiscard]] const TextureFormats& formats() const { return formats_; }

 private:
  [[nodiscard]] const TexelFormat& FormatOf(std::size_t texture) const;
  // Whether the card can draw to it.
  [[nodiscard]] bool Renderable(const TexelFormat& format) const;

  std::array<std::uint32_t, kTextureCount> names_{};
  std::array<TextureShape, kTextureCount> shapes_{};
  TileGeometry geometry_;
  TextureFormats formats_;
};

}  // namespace mirellon::gpu
