// The loops of similarity_band.h for one instruction set; included once per target.
//
// A band is worked through one dy at a time, from top to bottom. For every row of blocks the distances of all
// its dx are found, turned into weights, and laid down in pairs (one dx, the next), so that one multiply-add
// instruction serves two displacements and a pixel's sums stay in registers while all dx are added. A row of
// distances serves twice: for the blocks it belongs to, whose partners lie at p + d ("forward"), and for the
// blocks |dy| rows further up, whose partners at p - d those are ("backward").

#if defined(MIRELLON_SIMILARITY_BAND_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef MIRELLON_SIMILARITY_BAND_INL_H_
#undef MIRELLON_SIMILARITY_BAND_INL_H_
#else
#define MIRELLON_SIMILARITY_BAND_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/similarity_avx512-inl.h"
#include "engine/similarity_band.h"
#include "engine/similarity_rows-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine {
namespace HWY_NAMESPACE {

// Where a row of displacements reads and writes. Rows and columns are those of blocks in the work picture.
struct Walk {
  int firstRow = 0;     // the band's own first row
  int backwardRow = 0;  // how many rows below a block the distance at p - d lies
  int firstColumn = 0;  // distances are found from this column on,
  int columns = 0;      // for so many blocks
  int origin = 0;       // the work column of the band's first pixel
  int pairs = 0;
  int pairDx[kMostPairs] = {};  // the first dx of each pair; either may lie outside the displacements
  DisplacementRow displacements;

  [[nodiscard]] bool Holds(int dx) const { return dx >= displacements.firstDx && dx <= displacements.lastDx; }
  // Where in a row of distances that at p, backward that at p - d, for block 0 and pair k stands.
  [[nodiscard]] std::ptrdiff_t Column(int k, bool backward) const {
    return ((backward ? origin - pairDx[k] : origin) >> 1) - firstColumn;
  }
};

inline Walk PlanWalk(const SimilarityBand& band, const DisplacementRow& displacements) {
  const int border = band.planes->border;
  Walk walk;
  const int top = border + 2 * band.firstBlockRow;
  walk.firstRow = top >> 1;
  walk.backwardRow = ((top - displacements.dy) >> 1) - walk.firstRow;
  walk.origin = border + 2 * band.firstBlock;
  walk.firstColumn = (walk.origin - displacements.halfWindow) >> 1;
  walk.columns = band.blocks + displacements.halfWindow + 1;
  walk.displacements = displacements;
  // Both displacements of a pair must find their backward distances in the same block column.
  int dx = displacements.firstDx;
  if (((border - dx) & 1) == 0) --dx;
  for (; dx <= displacements.lastDx; dx += 2) walk.pairDx[walk.pairs++] = dx;
  return walk;
}

// ---------------------------------------------------------------------------------------------------------------
// Distances and weights of one row of blocks.

// What pair k reads and writes for `row` as the newest.
inline PairStep StepOf(const SimilarityBand& band, const Walk& walk, int row, int k) {
  const WorkPlanes& planes = *band.planes;
  const int dx = walk.pairDx[k];
  const std::uint8_t* own =
      planes.high + 2 * std::ptrdiff_t{row} * planes.stride + 2 * std::ptrdiff_t{walk.firstColumn - 1};
  const auto rowsOf = [&](int displacement) -> TripleRows {
    std::uint16_t* first = band.tripleSums + 3 * static_cast<std::size_t>(displacement) * band.blockStride;
    return {first, first + band.blockStride, first + 2 * band.blockStride};
  };
  return {own,
          own + walk.displacements.dy * planes.stride + dx,
          planes.stride,
          walk.columns,
          band.tables->storedEntries() - 1,
          band.blockSums,
          {rowsOf(2 * k), rowsOf(2 * k + 1)},
          {walk.Holds(dx), walk.Holds(dx + 1)}};
}

// ---------------------------------------------------------------------------------------------------------------
// Adding one row of blocks, in one direction.

// Where the weights of block 0 stand for each pair, in the order in which their samples follow each other.
struct WeightRows {
  const std::uint32_t* rows[kMostPairs] = {};
};

// The place of pair k's row among them.
inline int Place(const Walk& walk, int k, bool backward) {
  return backward ? walk.pairs - 1 - k : k;
}

// Where the samples of the band's column 0 for the first of the rows lie: forward those at dx and dx + 1 for
// the first dx, backward those at -dx - 1 and -dx, swapped, for the last.
inline std::ptrdiff_t FirstSample(const Walk& walk, bool backward) {
  return walk.origin + (backward ? -walk.pairDx[walk.pairs - 1] - 1 : walk.pairDx[0]);
}

inline void AddBlockRow(const SimilarityBand& band, const Walk& walk, const WeightRows& weights,
                        bool backward, int blockRow) {
  const WorkPlanes& planes = *band.planes;
  const int away = backward ? -walk.displacements.dy : walk.displacements.dy;
  const std::ptrdiff_t sampleRow = planes.border + 2 * (band.firstBlockRow + blockRow) + away;
  const std::ptrdiff_t firstSample = sampleRow * planes.stride + FirstSample(walk, backward);
  const std::size_t row = static_cast<std::size_t>(blockRow) * band.blockStride;
  AddStep step{};
  step.stride = planes.stride;
  step.swapped = backward;
  step.pairs = walk.pairs;
  std::copy_n(weights.rows, walk.pairs, step.weights);
  step.blocks = band.blocks;
  step.weightSums = band.weightSum + row;
  step.fusedProducts = band.fusedProducts;
  step.samplePairs = band.samplePairs;
  step.rowStride = band.blockStride;
  const auto readFrom = [&](const std::uint8_t* plane, std::int32_t* sums) {
    step.samples = plane + firstSample;
    for (std::size_t i = 0; i < kBlockPixels; ++i)
      step.sums[i] = sums + kBlockPixels * row + i * band.blockStride;
  };
  readFrom(planes.high, band.highSum);
  AddPairs<true>(step);
  if (planes.low == nullptr) return;
  readFrom(planes.low, band.lowSum);
  AddPairs<false>(step);
}

// ---------------------------------------------------------------------------------------------------------------
// The two ways from distances to weights.

// One table for all intensities: a distance has one weight, whichever direction it serves.
inline void AddRowOfOneTable(const SimilarityBand& band, const Walk& walk, const PairStep* steps,
                             int forwardRow, int backwardRow) {
  WeighPairs(steps, walk.pairs, band.tables->Table(0), band.distances, band.weights, band.blockStride);
  const auto add = [&](bool backward, int blockRow) {
    WeightRows weights;
    for (int k = 0; k < walk.pairs; ++k) {
      weights.rows[Place(walk, k, backward)] =
          band.weights + static_cast<std::size_t>(k) * band.blockStride + walk.Column(k, backward);
    }
    AddBlockRow(band, walk, weights, backward, blockRow);
  };
  if (forwardRow < band.blockRows) add(false, forwardRow);
  if (backwardRow >= 0) add(true, backwardRow);
}

// Where the table of each of the band's blocks in a row begins: that of its upper left sample.
inline void FindTables(const SimilarityBand& band, const Walk& walk, int blockRow,
                       const std::uint16_t** tables) {
  const WorkPlanes& planes = *band.planes;
  const std::ptrdiff_t y = planes.border + 2 * (band.firstBlockRow + blockRow);
  const std::uint8_t* samples = planes.high + y * planes.stride + walk.origin;
  const std::uint16_t* first = band.tables->Table(0);
  for (std::ptrdiff_t b = 0; b < band.blocks; ++b)
    tables[b] = first + samples[2 * b] * band.tables->tableStride();
}

// A table for each intensity: the weight is that of the block which it serves.
inline void AddRowOfManyTables(const SimilarityBand& band, const Walk& walk, const PairStep* steps,
                               int forwardRow, int backwardRow) {
  DirectionStep directions[2];
  for (const bool backward : {false, true}) {
    DirectionStep& direction = directions[backward ? 1 : 0];
    const int blockRow = backward ? backwardRow : forwardRow;
    direction.wanted = blockRow >= 0 && blockRow < band.blockRows;
    if (!direction.wanted) continue;
    const std::uint16_t** tables = band.blockTables + (backward ? band.blockStride : 0);
    FindTables(band, walk, blockRow, tables);
    direction.tables = tables;
    for (int k = 0; k < walk.pairs; ++k) {
      const std::size_t row = static_cast<std::size_t>(k) + (backward ? kMostPairs : 0);
      direction.weights[k] = band.weights + row * band.blockStride;
      direction.column[k] = walk.Column(k, backward);
    }
  }
  WeighPairsByIntensity(steps, walk.pairs, directions, band.blocks, band.distances, band.distancePairs,
                        band.blockStride);
  for (const bool backward : {false, true}) {
    const DirectionStep& direction = directions[backward ? 1 : 0];
    if (!direction.wanted) continue;
    WeightRows weights;
    for (int k = 0; k < walk.pairs; ++k) weights.rows[Place(walk, k, backward)] = direction.weights[k];
    AddBlockRow(band, walk, weights, backward, backward ? backwardRow : forwardRow);
  }
}

inline void AccumulateDisplacementsImpl(const SimilarityBand& band, const DisplacementRow& displacements) {
  const Walk walk = PlanWalk(band, displacements);
  const bool oneTable = band.tables->tableStride() == 0;
  PairStep steps[kMostPairs];
  const auto advance = [&] {
    for (int k = 0; k < walk.pairs; ++k) steps[k].Advance();
  };
  for (int k = 0; k < walk.pairs; ++k) steps[k] = StepOf(band, walk, walk.firstRow - 1, k);
  for (int row = 0; row < 2; ++row) {
    for (int k = 0; k < walk.pairs; ++k) FindPairTriples(steps[k]);
    advance();
  }
  for (int forwardRow = 0; forwardRow < band.blockRows + walk.backwardRow; ++forwardRow) {
    const int backwardRow = forwardRow - walk.backwardRow;
    if (oneTable) {
      AddRowOfOneTable(band, walk, steps, forwardRow, backwardRow);
    } else {
      AddRowOfManyTables(band, walk, steps, forwardRow, backwardRow);
    }
    advance();
  }
}

// ---------------------------------------------------------------------------------------------------------------
// Begin and end of a band.

inline void InitBandImpl(const SimilarityBand& band) {
  const WorkPlanes& planes = *band.planes;
  const auto blockRows = static_cast<std::size_t>(band.blockRows);
  constexpr auto kOne = static_cast<std::int32_t>(kWeightOne);
  std::fill_n(band.weightSum, blockRows * band.blockStride, kOne);
  const auto begin = [&](const std::uint8_t* plane, std::int32_t* sums) {
    for (std::size_t row = 0; row < 2 * blockRows; ++row) {
      const std::ptrdiff_t y = planes.border + 2 * band.firstBlockRow + static_cast<std::ptrdiff_t>(row);
      const std::uint8_t* HWY_RESTRICT samples =
          plane + y * planes.stride + planes.border + 2 * std::ptrdiff_t{band.firstBlock};
      std::int32_t* HWY_RESTRICT even = sums + row * 2 * band.blockStride;
      std::int32_t* HWY_RESTRICT odd = even + band.blockStride;
      for (std::ptrdiff_t b = 0; b < band.blocks; ++b) {
        even[b] = samples[2 * b] * kOne;
        odd[b] = samples[2 * b + 1] * kOne;
      }
    }
  };
  begin(planes.high, band.highSum);
  if (planes.low != nullptr) begin(planes.low, band.lowSum);
}

// A reciprocal and a tiny addition stand for the division: a quotient plus one half that is not whole lies at
// least 1 / (2 * 441 * 10000) from the next whole number, far more than the addition, and that far more than
// the rounding errors; one that is whole is lifted back over them.
constexpr double kHalfAndABit = 0.5 + 1e-9;

// high, low: `blocks` sums of even columns and, `odd` further on, those of odd ones.
template <typename T>
inline void NormaliseRow(const std::int32_t* HWY_RESTRICT high, const std::int32_t* HWY_RESTRICT low,
                         std::size_t odd, const std::int32_t* HWY_RESTRICT weights, T* HWY_RESTRICT out,
                         std::size_t blocks) {
  for (std::size_t b = 0; b < blocks; ++b) {
    const double reciprocal = 1.0 / weights[b];
    for (std::size_t x = 0; x < 2; ++x) {
      double value = high[b + x * odd];
      if constexpr (sizeof(T) == 2) value = value * 256.0 + low[b + x * odd];
      out[2 * b + x] = static_cast<T>(static_cast<std::int32_t>(value * reciprocal + kHalfAndABit));
    }
  }
}

inline void NormaliseBandImpl(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride,
                              int bits) {
  const auto blocks = static_cast<std::size_t>(band.blocks);
  for (std::size_t row = 0; row < 2 * static_cast<std::size_t>(band.blockRows); ++row) {
    unsigned char* out = rows + static_cast<std::ptrdiff_t>(row) * rowStride;
    const std::int32_t* high = band.highSum + row * 2 * band.blockStride;
    const std::int32_t* weights = band.weightSum + row / 2 * band.blockStride;
    if (bits == 8) {
      NormaliseRow<std::uint8_t>(high, nullptr, band.blockStride, weights, out, blocks);
    } else {
      NormaliseRow(high, band.lowSum + row * 2 * band.blockStride, band.blockStride, weights,
                   reinterpret_cast<std::uint16_t*>(out), blocks);
    }
  }
}

inline std::int64_t TargetImpl() {
  return HWY_TARGET;
}

}  // namespace HWY_NAMESPACE
}  // namespace mirellon::engine
HWY_AFTER_NAMESPACE();

#endif  // MIRELLON_SIMILARITY_BAND_INL_H_
