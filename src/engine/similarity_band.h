// The inner loops of the similarity filter, on one band of rows: raw rows and sizes only, no allocation, no
// progress, one implementation for every sample depth, compiled for every instruction set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/weight_tables.h"

namespace mirellon::engine {

// A picture grown by a mirrored border, as planes of bytes: the high bytes of the samples (the samples
// themselves at 8 bits), which also decide the weights, and the low bytes at 16 bits. Outside the border lies
// a frame of zeros: where a displaced partner falls outside the work picture, |I - 0| = I is the value that
// counts.
struct WorkPlanes {
  const std::uint8_t* high = nullptr;  // at work coordinate (0, 0); row y lies y * stride bytes on
  const std::uint8_t* low = nullptr;   // null at 8 bits; same stride
  std::ptrdiff_t stride = 0;
  int border = 0;  // P: the picture's first sample lies at work coordinate (P, P)
  int width = 0;   // of the picture, even
  int height = 0;  // of the picture, even
};

// Zeros around the work picture: as many rows above and columns to the left as a displacement can reach, and
// to the right what a whole vector may read too much.
inline constexpr int kFrameRows = 12;
inline constexpr int kFrameColumnsLeft = 64;
inline constexpr int kFrameColumnsRight = 192;

// One band of 2 x 2 blocks with its accumulators. Everything but `planes` and `tables` belongs to one thread.
struct SimilarityBand {
  const WorkPlanes* planes = nullptr;
  const WeightTables* tables = nullptr;
  int firstBlockRow = 0;
  int blockRows = 0;

  // Accumulators, in an order of the loops' own (InitBand and NormaliseBand know it): per block the sum of
  // weights, per pixel the weighted sum of high and, at 16 bits, of low bytes. 441 weights of at most 10000
  // times 255 fit 31 bits.
  std::uint32_t* weightSum = nullptr;  // blockRows x blockStride
  std::int32_t* highSum = nullptr;     // 2 blockRows x 2 blockStride
  std::int32_t* lowSum = nullptr;      // the same, or null
  // Scratch: the distances (or weights) of one displacement, its half-size row sums, and two rows of weights.
  std::uint16_t* distances = nullptr;   // (blockRows + kExtraDistanceRows) x blockStride
  std::uint16_t* rowSums = nullptr;     // kRowSumRows x blockStride
  std::uint16_t* weightRows = nullptr;  // 2 x blockStride
  std::size_t blockStride = 0;          // blocks, with room for whole vectors
};

// A displacement of up to 10 rows reads distances up to 5 block rows further down, one more for odd places.
inline constexpr int kExtraDistanceRows = 6;
inline constexpr int kRowSumRows = 4;  // three in use and one raw row

// A block stride that leaves every loop room for `blocks` blocks.
[[nodiscard]] std::size_t BlockStride(int blocks);

// Sets the accumulators to the contribution of displacement (0, 0): one weight of 10000.
void InitBand(const SimilarityBand& band);
// Adds both directions of displacement (dy, dx): the weight at p for the partner at p + d, the weight at p -
// d for the one there. (dy, dx) lies above the centre or to the left of it.
void AccumulateDisplacement(const SimilarityBand& band, int dy, int dx);
// Divides: row r of the band's 2 blockRows pixel rows goes to `rows` + r * rowStride bytes, `width` samples
// of `bits` (8 or 16), each trunc(value / weight + 0.5) held to the depth.
void NormaliseBand(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride, int width,
                   int bits);

// Highway targets: the one in use, and those compiled in that this machine runs, best first.
[[nodiscard]] std::int64_t ActiveBandTarget();
[[nodiscard]] const std::vector<std::int64_t>& CompiledBandTargets();

}  // namespace mirellon::engine
