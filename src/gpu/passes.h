// The passes of the filter: each draws one rectangle into one or two textures.
//
// Textures are read texel by texel. A displacement d = (row, column) leads from a pixel q to q + d; the
// difference at q is that between q and q + d, so the weight at q is how much q + d counts for q, and the
// weight at q - d how much q - d does. The border is so wide that, for the search windows there are, every
// pixel that the tile's result depends on has its partner inside the padded tile.
#pragma once

#include <cstddef>

#include "gpu/programs.h"
#include "gpu/tile_textures.h"

namespace mirellon::gpu {

struct Displacement {
  int row = 0;
  int column = 0;
};

// What turns box sums into weights.
struct WeightSettings {
  double variance = 0.0;    // strength^3.5; with three channels that of luminance, plane 0
  double varianceUV = 0.0;  // with three channels: that of planes 1 and 2
  double dynamics = 0.0;    // the dynamicity
};

// Where the running sums stand: one pair is read, the other written.
struct SumTextures {
  std::size_t weightsRead;
  std::size_t valuesRead;
  std::size_t weightsWritten;
  std::size_t valuesWritten;
};
// `phase` as after the upload: true, then flipped with every displacement.
[[nodiscard]] SumTextures SumTexturesOf(bool phase);

// Borrows both; all functions need their context, with the frame buffer object bound.
class Passes {
 public:
  Passes(const Programs& programs, const TileTextures& textures) : programs_(programs), textures_(textures) {}

  void Clear(std::size_t texture) const;
  // `guide`: the texture that similarity is measured on.
  void Difference(const TileGeometry& geometry, std::size_t guide, Displacement d) const;
  void HalfSum(const TileGeometry& geometry) const;
  void BoxSum(const TileGeometry& geometry) const;
  void Weights(const TileGeometry& geometry, const WeightSettings& settings) const;
  // The displacement (0, 0) counts once, every other one both ways.
  void AccumulateCentre(const TileGeometry& geometry, const SumTextures& sums) const;
  void AccumulateBothWays(const TileGeometry& geometry, const SumTextures& sums, Displacement d) const;
  // Into the result, from the sums that would be read next.
  void Divide(const SumTextures& sums) const;
  // Leaves the state that the next tile expects.
  static void Finish();

 private:
  const Programs& programs_;
  const TileTextures& textures_;
};

}  // namespace mirellon::gpu
