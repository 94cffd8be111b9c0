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
  int blocks = 0;       // of the picture, in a row
  int pairs = 0;
  int pairDx[kMostPairs] = {};  // the first dx of each pair; either may lie outside the displacements
  DisplacementRow displacements;

  [[nodiscard]] bool Holds(int dx) const { return dx >= displacements.firstDx && dx <= displacements.lastDx; }
  // Where the distance at p for block 0 stands in a row of distances, and that at p - d.
  [[nodiscard]] std::ptrdiff_t ForwardColumn(int border) const { return (border >> 1) - firstColumn; }
  [[nodiscard]] std::ptrdiff_t BackwardColumn(int border, int dx) const {
    return ((border - dx) >> 1) - firstColumn;
  }
};

inline Walk PlanWalk(const SimilarityBand& band, const DisplacementRow& displacements) {
  const WorkPlanes& planes = *band.planes;
  Walk walk;
  const int top = planes.border + 2 * band.firstBlockRow;
  walk.firstRow = top >> 1;
  walk.backwardRow = ((top - displacements.dy) >> 1) - walk.firstRow;
  walk.firstColumn = (planes.border - displacements.halfWindow) >> 1;
  walk.blocks = planes.width / 2;
  walk.columns = walk.blocks + displacements.halfWindow + 1;
  walk.displacements = displacements;
  // Both displacements of a pair must find their backward distances in the same block column.
  int dx = displacements.firstDx;
  if (((planes.border - dx) & 1) == 0) --dx;
  for (; dx <= displacements.lastDx; dx += 2) walk.pairDx[walk.pairs++] = dx;
  return walk;
}

// ---------------------------------------------------------------------------------------------------------------
// Distances and weights of one row of blocks.

// The row of triple sums that one displacement uses for `row`: three of them take turns.
inline std::uint16_t* TripleRow(const SimilarityBand& band, int displacement, int row) {
  const int slot = 3 * displacement + row % 3;
  return band.tripleSums + static_cast<std::size_t>(slot) * band.blockStride;
}

inline void FindBlockSums(const SimilarityBand& band, const Walk& walk, int row, int dx) {
  const WorkPlanes& planes = *band.planes;
  const std::ptrdiff_t column = walk.firstColumn - 1;
  const std::uint8_t* start = planes.high + 2 * std::ptrdiff_t{row} * planes.stride + 2 * column;
  const std::ptrdiff_t away = walk.displacements.dy * planes.stride + dx;
  BlockSums(start, start + away, planes.stride, band.blockSums, walk.columns + 2);
}

// The first two rows only fill the triple sums.
inline void FindFirstTriples(const SimilarityBand& band, const Walk& walk, int row) {
  for (int dx = walk.displacements.firstDx; dx <= walk.displacements.lastDx; ++dx) {
    FindBlockSums(band, walk, row, dx);
    TripleSums(band.blockSums, TripleRow(band, dx - walk.displacements.firstDx, row), walk.columns);
  }
}

// The distances of one displacement for the row above `row`, which becomes the newest of its triples; or the
// row of "too far" for a displacement that does not exist.
inline const std::uint16_t* FindDistances(const SimilarityBand& band, const Walk& walk, int row, int dx,
                                          int which) {
  if (!walk.Holds(dx)) return band.distances + 2 * band.blockStride;
  FindBlockSums(band, walk, row, dx);
  const int displacement = dx - walk.displacements.firstDx;
  std::uint16_t* distances = band.distances + static_cast<std::size_t>(which) * band.blockStride;
  BoxSums(band.blockSums, TripleRow(band, displacement, row + 1), TripleRow(band, displacement, row + 2),
          band.tables->storedEntries() - 1, TripleRow(band, displacement, row), distances, walk.columns);
  return distances;
}

// ---------------------------------------------------------------------------------------------------------------
// Adding one row of blocks, in one direction.

// The rows of weight pairs, each from its block 0 on, and how far a pair's samples lie from the pixel.
struct PairRows {
  int pairs = 0;
  const std::uint32_t* weights[kMostPairs] = {};
  std::ptrdiff_t sampleShift[kMostPairs] = {};
};

// The samples of one row as pairs with their neighbours; enough of them for every displacement and whole
// steps. pairs[0] belongs to the picture's column -halfWindow - 1.
inline void PairSamples(const SimilarityBand& band, const Walk& walk, const std::uint8_t* plane,
                        std::ptrdiff_t row, bool swapped, std::uint32_t* pairs) {
  const WorkPlanes& planes = *band.planes;
  const int reach = walk.displacements.halfWindow + 1;
  const std::uint8_t* start = plane + row * planes.stride + planes.border - reach;
  const int count = planes.width + 2 * reach;
  if (swapped) {
    SamplePairs(start + 1, start, pairs, count);
  } else {
    SamplePairs(start, start + 1, pairs, count);
  }
}

template <bool kWeights>
inline void AddPlane(const SimilarityBand& band, const Walk& walk, const PairRows& rows,
                     const std::uint8_t* plane, std::ptrdiff_t sampleRow, bool swapped, int blockRow,
                     std::int32_t* sums) {
  const std::size_t pixelStride = 2 * band.blockStride;
  std::uint32_t* upper = band.samplePairs;
  std::uint32_t* lower = band.samplePairs + pixelStride;
  PairSamples(band, walk, plane, sampleRow, swapped, upper);
  PairSamples(band, walk, plane, sampleRow + 1, swapped, lower);
  std::int32_t* upperSum = sums + 2 * static_cast<std::size_t>(blockRow) * pixelStride;
  std::int32_t* weightSum = band.weightSum + static_cast<std::size_t>(blockRow) * band.blockStride;
  AddPairs<kWeights>(rows.weights, rows.sampleShift, rows.pairs, upper, lower, walk.blocks, upperSum,
                     upperSum + pixelStride, weightSum);
}

inline void AddBlockRow(const SimilarityBand& band, const Walk& walk, const PairRows& rows, bool backward,
                        int blockRow) {
  const WorkPlanes& planes = *band.planes;
  const int away = backward ? -walk.displacements.dy : walk.displacements.dy;
  const std::ptrdiff_t sampleRow = planes.border + 2 * (band.firstBlockRow + blockRow) + away;
  AddPlane<true>(band, walk, rows, planes.high, sampleRow, backward, blockRow, band.highSum);
  if (planes.low == nullptr) return;
  AddPlane<false>(band, walk, rows, planes.low, sampleRow, backward, blockRow, band.lowSum);
}

// A pair's samples: forward those at +dx and +dx + 1, backward those at -dx and -dx - 1, kept as (second,
// first).
inline std::ptrdiff_t SampleShift(const Walk& walk, int dx, bool backward) {
  return walk.displacements.halfWindow + 1 + (backward ? -dx - 1 : dx);
}

inline PairRows RowsOf(const SimilarityBand& band, const Walk& walk, bool backward) {
  const int border = band.planes->border;
  PairRows rows;
  rows.pairs = walk.pairs;
  for (int k = 0; k < walk.pairs; ++k) {
    const int dx = walk.pairDx[k];
    const std::ptrdiff_t column = backward ? walk.BackwardColumn(border, dx) : walk.ForwardColumn(border);
    rows.weights[k] = band.weights + static_cast<std::size_t>(k) * band.blockStride + column;
    rows.sampleShift[k] = SampleShift(walk, dx, backward);
  }
  return rows;
}

// ---------------------------------------------------------------------------------------------------------------
// The two ways from distances to weights.

// One table for all intensities: a distance has one weight, whichever direction it serves.
inline void AddRowOfOneTable(const SimilarityBand& band, const Walk& walk, int row, int forwardRow,
                             int backwardRow) {
  for (int k = 0; k < walk.pairs; ++k) {
    const int dx = walk.pairDx[k];
    const std::uint16_t* first = FindDistances(band, walk, row, dx, 0);
    const std::uint16_t* second = FindDistances(band, walk, row, dx + 1, 1);
    PairWeights(band.tables->Table(0), band.tables->storedEntries() - 1, first, second,
                band.weights + static_cast<std::size_t>(k) * band.blockStride, walk.columns);
  }
  if (forwardRow < band.blockRows) AddBlockRow(band, walk, RowsOf(band, walk, false), false, forwardRow);
  if (backwardRow >= 0) AddBlockRow(band, walk, RowsOf(band, walk, true), true, backwardRow);
}

// A table for each intensity: the weight is that of the block which it serves.
inline void AddRowOfManyTables(const SimilarityBand& band, const Walk& walk, int row, int forwardRow,
                               int backwardRow) {
  const WorkPlanes& planes = *band.planes;
  const auto samplesOf = [&](int blockRow) {
    const std::ptrdiff_t y = planes.border + 2 * (band.firstBlockRow + blockRow);
    return planes.high + y * planes.stride + planes.border;
  };
  const bool forward = forwardRow < band.blockRows;
  const bool backward = backwardRow >= 0;
  PairRows forwardRows = RowsOf(band, walk, false);
  PairRows backwardRows = RowsOf(band, walk, true);
  for (int k = 0; k < walk.pairs; ++k) {
    const int dx = walk.pairDx[k];
    const std::uint16_t* first = FindDistances(band, walk, row, dx, 0);
    const std::uint16_t* second = FindDistances(band, walk, row, dx + 1, 1);
    const auto weigh = [&](int blockRow, std::ptrdiff_t column, PairRows& rows, int firstRow) {
      std::uint32_t* weights = band.weights + static_cast<std::size_t>(firstRow + k) * band.blockStride;
      PairWeightsByIntensity(*band.tables, samplesOf(blockRow), first + column, second + column, weights,
                             walk.blocks);
      rows.weights[k] = weights;
    };
    if (forward) weigh(forwardRow, walk.ForwardColumn(planes.border), forwardRows, 0);
    if (backward) weigh(backwardRow, walk.BackwardColumn(planes.border, dx), backwardRows, kMostPairs);
  }
  if (forward) AddBlockRow(band, walk, forwardRows, false, forwardRow);
  if (backward) AddBlockRow(band, walk, backwardRows, true, backwardRow);
}

inline void AccumulateDisplacementsImpl(const SimilarityBand& band, const DisplacementRow& displacements) {
  const Walk walk = PlanWalk(band, displacements);
  const bool oneTable = band.tables->tableStride() == 0;
  const int lastRow = walk.firstRow + band.blockRows - 1 + walk.backwardRow;
  FindFirstTriples(band, walk, walk.firstRow - 1);
  FindFirstTriples(band, walk, walk.firstRow);
  for (int row = walk.firstRow; row <= lastRow; ++row) {
    const int forwardRow = row - walk.firstRow;
    const int backwardRow = forwardRow - walk.backwardRow;
    if (oneTable) {
      AddRowOfOneTable(band, walk, row + 1, forwardRow, backwardRow);
    } else {
      AddRowOfManyTables(band, walk, row + 1, forwardRow, backwardRow);
    }
  }
}

// ---------------------------------------------------------------------------------------------------------------
// Begin and end of a band.

inline void InitBandImpl(const SimilarityBand& band) {
  const WorkPlanes& planes = *band.planes;
  const std::size_t pixels = 2 * band.blockStride;
  const auto blockRows = static_cast<std::size_t>(band.blockRows);
  constexpr auto kOne = static_cast<std::int32_t>(kWeightOne);
  std::fill_n(band.weightSum, blockRows * band.blockStride, kOne);
  for (std::size_t row = 0; row < 2 * blockRows; ++row) {
    const std::ptrdiff_t y = planes.border + 2 * band.firstBlockRow + static_cast<std::ptrdiff_t>(row);
    const std::ptrdiff_t place = y * planes.stride + planes.border;
    for (std::ptrdiff_t x = 0; x < planes.width; ++x)
      band.highSum[row * pixels + x] = planes.high[place + x] * kOne;
    if (planes.low == nullptr) continue;
    for (std::ptrdiff_t x = 0; x < planes.width; ++x)
      band.lowSum[row * pixels + x] = planes.low[place + x] * kOne;
  }
  const auto tooFar = static_cast<std::uint16_t>(band.tables->storedEntries() - 1);
  std::fill_n(band.distances + 2 * band.blockStride, band.blockStride, tooFar);
}

// A reciprocal and a tiny addition stand for the division: a quotient plus one half that is not whole lies at
// least 1 / (2 * 441 * 10000) from the next whole number, far more than the addition, and that far more than
// the rounding errors; one that is whole is lifted back over them.
constexpr double kHalfAndABit = 0.5 + 1e-9;

template <typename T>
inline void NormaliseRow(const std::int32_t* HWY_RESTRICT high, const std::int32_t* HWY_RESTRICT low,
                         const std::int32_t* HWY_RESTRICT weights, T* HWY_RESTRICT out,
                         std::ptrdiff_t blocks) {
  for (std::ptrdiff_t b = 0; b < blocks; ++b) {
    const double reciprocal = 1.0 / weights[b];
    for (std::ptrdiff_t x = 2 * b; x < 2 * b + 2; ++x) {
      double value = high[x];
      if constexpr (sizeof(T) == 2) value = value * 256.0 + low[x];
      out[x] = static_cast<T>(static_cast<std::int32_t>(value * reciprocal + kHalfAndABit));
    }
  }
}

inline void NormaliseBandImpl(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride,
                              int bits) {
  const std::ptrdiff_t blocks = band.planes->width / 2;
  for (std::size_t row = 0; row < 2 * static_cast<std::size_t>(band.blockRows); ++row) {
    unsigned char* out = rows + static_cast<std::ptrdiff_t>(row) * rowStride;
    const std::int32_t* high = band.highSum + row * 2 * band.blockStride;
    const std::int32_t* weights = band.weightSum + row / 2 * band.blockStride;
    if (bits == 8) {
      NormaliseRow<std::uint8_t>(high, nullptr, weights, out, blocks);
    } else {
      NormaliseRow(high, band.lowSum + row * 2 * band.blockStride, weights,
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
