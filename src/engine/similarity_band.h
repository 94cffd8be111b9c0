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
inline constexpr int kFrameColumnsRight = 256;

// The displacements (dy, dx) of one dy, dx from firstDx to lastDx, lying above the centre or to the left of
// it, in a search window that reaches `halfWindow` far. Each counts in both directions.
struct DisplacementRow {
  int dy = 0;  // at most 0
  int firstDx = 0;
  int lastDx = 0;
  int halfWindow = 0;
};

inline constexpr int kMostDisplacementsPerRow = 21;
// Displacements are taken two at a time; an odd one has an empty partner.
inline constexpr int kMostPairs = kMostDisplacementsPerRow / 2 + 1;

// One band of 2 x 2 blocks with its accumulators. Everything but `planes` and `tables` belongs to one thread.
// All rows of storage have room for blockStride blocks; see BlockStride.
struct SimilarityBand {
  const WorkPlanes* planes = nullptr;
  const WeightTables* tables = nullptr;
  int firstBlockRow = 0;  // of the picture
  int blockRows = 0;
  int firstBlock = 0;  // of the picture's rows of blocks
  int blocks = 0;
  std::size_t blockStride = 0;
  bool fusedProducts = false;  // see HasFusedProducts

  // Accumulators: per block the sum of weights, per pixel the weighted sum of high and, at 16 bits, of low
  // bytes. 441 weights of at most 10000 times 255 fit 31 bits. A row of pixels is kept as two of blocks: its
  // even columns, then its odd ones.
  std::int32_t* weightSum = nullptr;  // blockRows rows
  std::int32_t* highSum = nullptr;    // 4 blockRows rows
  std::int32_t* lowSum = nullptr;     // the same, or null

  // Scratch.
  std::uint16_t* blockSums = nullptr;           // 1 row: differences summed over each block
  std::uint16_t* tripleSums = nullptr;          // 3 rows for each displacement of kMostPairs pairs
  std::uint16_t* distances = nullptr;           // 2 rows: those of a pair's displacements
  std::uint32_t* weights = nullptr;             // 2 kMostPairs rows: a weight, and that of the next dx << 16
  const std::uint16_t** blockTables = nullptr;  // 2 rows: the table of each block; unset ones readable
  std::uint32_t* distancePairs = nullptr;       // kMostPairs rows: as weights
  std::uint32_t* samplePairs = nullptr;         // 4 rows: a sample and its neighbour << 16
};

// A row's length in blocks that leaves every loop room around `blocks` blocks.
[[nodiscard]] std::size_t BlockStride(int blocks);

// Sets the accumulators to the contribution of displacement (0, 0), one weight of 10000, and prepares the
// scratch.
void InitBand(const SimilarityBand& band);
// Adds both directions of each displacement: the weight at p for the partner at p + d, the weight at p - d
// for the one there.
void AccumulateDisplacements(const SimilarityBand& band, const DisplacementRow& displacements);
// Divides: row r of the band's 2 blockRows pixel rows goes to `rows` + r * rowStride bytes, 2 blocks samples
// of `bits` (8 or 16), each trunc(value / weight + 0.5).
void NormaliseBand(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride, int bits);

// Whether the loops may multiply and add in one instruction where their target alone does not promise it.
[[nodiscard]] bool HasFusedProducts();

// Highway targets: the one in use, and those compiled in that this machine runs, best first.
[[nodiscard]] std::int64_t ActiveBandTarget();
[[nodiscard]] const std::vector<std::int64_t>& CompiledBandTargets();

}  // namespace mirellon::engine
