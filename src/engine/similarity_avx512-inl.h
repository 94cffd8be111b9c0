// The row steps that AVX-512 does in its own way: distances, their sums and their weights without a detour
// through memory, and samples from registers. Included once per target, and empty for all but one.

#if defined(MIRELLON_SIMILARITY_AVX512_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef MIRELLON_SIMILARITY_AVX512_INL_H_
#undef MIRELLON_SIMILARITY_AVX512_INL_H_
#else
#define MIRELLON_SIMILARITY_AVX512_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/similarity_band.h"
#include "engine/similarity_rows-inl.h"
#include "engine/weight_tables.h"
#include "hwy/highway.h"

#if HWY_TARGET == HWY_AVX3

HWY_BEFORE_NAMESPACE();
namespace mirellon::engine {
namespace HWY_NAMESPACE {

// ---------------------------------------------------------------------------------------------------------------
// Distances, 32 blocks at a time.

// Keeps the compiler from reading `p` once for each use: reads across cache lines are what costs here.
HWY_INLINE __m512i LoadOnce(const std::uint8_t* p) {
  __m512i bytes = _mm512_loadu_si512(p);
#if HWY_COMPILER_GCC || HWY_COMPILER_CLANG
  __asm__("" : "+v"(bytes));  // NOLINT(hicpp-no-assembler)
#endif
  return bytes;
}

HWY_INLINE __m512i PairDifferences32(__m512i own, __m512i partner) {
  const __m512i difference = _mm512_sub_epi8(_mm512_max_epu8(own, partner), _mm512_min_epu8(own, partner));
  return _mm512_maddubs_epi16(difference, _mm512_set1_epi8(1));
}

// One value for each of a pair's displacements.
struct Both {
  __m512i first;
  __m512i second;
};

// An order of lanes for picking from two registers, whose lanes count as one row of 64.
struct alignas(64) LaneOrder {
  std::uint16_t lanes[32];
  [[nodiscard]] HWY_INLINE __m512i Load() const { return _mm512_load_si512(lanes); }
};

// 32 neighbours from lane `first` on.
constexpr LaneOrder Following(int first) {
  LaneOrder order{};
  for (int i = 0; i < 32; ++i) order.lanes[i] = static_cast<std::uint16_t>(first + i);
  return order;
}

// By turns one of the first register, from lane `first` on, and one of the second.
constexpr LaneOrder Interleaved(int first) {
  LaneOrder order{};
  for (int i = 0; i < 32; ++i) order.lanes[i] = static_cast<std::uint16_t>(first + i / 2 + i % 2 * 32);
  return order;
}

constexpr LaneOrder kOneOn = Following(1);
constexpr LaneOrder kTwoOn = Following(2);
constexpr LaneOrder kLowerHalves = Interleaved(0);
constexpr LaneOrder kUpperHalves = Interleaved(16);

// Triple sums from left to right.
class TripleStream {
 public:
  HWY_INLINE explicit TripleStream(const PairStep& step)
      : own_(step.own),
        partner_(step.partner),
        stride_(step.stride),
        oneOn_(kOneOn.Load()),
        twoOn_(kTwoOn.Load()),
        sums_(BlockSums(0)) {}

  // Those of the 32 blocks from j on, for j = 0, 32, ...
  HWY_INLINE Both Next(std::ptrdiff_t j) {
    const Both next = BlockSums(2 * j + 64);
    const Both triples = {Triples(sums_.first, next.first), Triples(sums_.second, next.second)};
    sums_ = next;
    return triples;
  }

 private:
  HWY_INLINE Both BlockSums(std::ptrdiff_t x) const {
    const __m512i upper = LoadOnce(own_ + x);
    const __m512i lower = LoadOnce(own_ + stride_ + x);
    const std::uint8_t* above = partner_ + x;
    const std::uint8_t* below = partner_ + stride_ + x;
    return {_mm512_add_epi16(PairDifferences32(upper, LoadOnce(above)),
                             PairDifferences32(lower, LoadOnce(below))),
            _mm512_add_epi16(PairDifferences32(upper, LoadOnce(above + 1)),
                             PairDifferences32(lower, LoadOnce(below + 1)))};
  }

  HWY_INLINE __m512i Triples(__m512i sums, __m512i next) const {
    const __m512i one = _mm512_permutex2var_epi16(sums, oneOn_, next);
    const __m512i two = _mm512_permutex2var_epi16(sums, twoOn_, next);
    return _mm512_add_epi16(_mm512_add_epi16(sums, one), two);
  }

  const std::uint8_t* own_;
  const std::uint8_t* partner_;
  std::ptrdiff_t stride_;
  __m512i oneOn_;
  __m512i twoOn_;
  Both sums_;
};

inline void FindPairTriples(const PairStep& step) {
  TripleStream stream(step);
  for (std::ptrdiff_t j = 0; j < step.columns; j += 32) {
    const Both triples = stream.Next(j);
    _mm512_storeu_si512(step.triples[0].newest + j, triples.first);
    _mm512_storeu_si512(step.triples[1].newest + j, triples.second);
  }
}

// Distances from left to right.
class DistanceStream {
 public:
  HWY_INLINE explicit DistanceStream(const PairStep& step)
      : triples_(step),
        first_(step.triples[0]),
        second_(step.triples[1]),
        missingFirst_(_mm512_set1_epi16(step.exists[0] ? 0 : -1)),
        missingSecond_(_mm512_set1_epi16(step.exists[1] ? 0 : -1)),
        tooFar_(_mm512_set1_epi16(static_cast<std::int16_t>(step.tooFar))) {}

  HWY_INLINE Both Next(std::ptrdiff_t j) {
    const Both newest = triples_.Next(j);
    return {Distances(first_, newest.first, missingFirst_, j),
            Distances(second_, newest.second, missingSecond_, j)};
  }

 private:
  HWY_INLINE __m512i Distances(const TripleRows& rows, __m512i newest, __m512i missing,
                               std::ptrdiff_t j) const {
    _mm512_storeu_si512(rows.newest + j, newest);
    const __m512i older =
        _mm512_add_epi16(_mm512_loadu_si512(rows.oldest + j), _mm512_loadu_si512(rows.middle + j));
    return _mm512_min_epu16(_mm512_or_si512(_mm512_add_epi16(older, newest), missing), tooFar_);
  }

  TripleStream triples_;
  TripleRows first_;
  TripleRows second_;
  __m512i missingFirst_;
  __m512i missingSecond_;
  __m512i tooFar_;
};

inline void FindPairDistances(const PairStep& step, std::uint16_t* first, std::uint16_t* second) {
  DistanceStream stream(step);
  for (std::ptrdiff_t j = 0; j < step.columns; j += 32) {
    const Both distances = stream.Next(j);
    _mm512_storeu_si512(first + j, distances.first);
    _mm512_storeu_si512(second + j, distances.second);
  }
}

// ---------------------------------------------------------------------------------------------------------------
// Weights, 32 at a time.

// A table of 64 kParts entries, kParts being 1, 2, 4 or 8, in registers: two hold 64 of them, of which one
// instruction picks 32 by the distances' lower bits; their upper bits choose among the parts.
template <int kParts>
class RegisterTable {
 public:
  HWY_INLINE explicit RegisterTable(const std::uint16_t* table) : lower_(table), upper_(table + kHalf) {}
  HWY_INLINE __m512i LookUp(__m512i distances) const {
    const __mmask32 above = _mm512_test_epi16_mask(distances, _mm512_set1_epi16(kHalf));
    return _mm512_mask_mov_epi16(lower_.LookUp(distances), above, upper_.LookUp(distances));
  }

 private:
  static constexpr int kHalf = kParts / 2 * kTableStep;
  RegisterTable<kParts / 2> lower_;
  RegisterTable<kParts / 2> upper_;
};

template <>
class RegisterTable<1> {
 public:
  HWY_INLINE explicit RegisterTable(const std::uint16_t* table)
      : lower_(_mm512_load_si512(table)), upper_(_mm512_load_si512(table + kTableStep / 2)) {}
  HWY_INLINE __m512i LookUp(__m512i distances) const {
    return _mm512_permutex2var_epi16(lower_, distances, upper_);
  }

 private:
  __m512i lower_;
  __m512i upper_;
};

template <int kParts>
HWY_INLINE void WeighPairFromRegisters(const PairStep& step, const RegisterTable<kParts>& table,
                                       std::uint32_t* weights) {
  const __m512i lower = kLowerHalves.Load();
  const __m512i upper = kUpperHalves.Load();
  DistanceStream stream(step);
  for (std::ptrdiff_t j = 0; j < step.columns; j += 32) {
    const Both distances = stream.Next(j);
    const __m512i first = table.LookUp(distances.first);
    const __m512i second = table.LookUp(distances.second);
    _mm512_storeu_si512(weights + j, _mm512_permutex2var_epi16(first, lower, second));
    _mm512_storeu_si512(weights + j + 16, _mm512_permutex2var_epi16(first, upper, second));
  }
}

template <int kParts>
inline void WeighPairsFromRegisters(const PairStep* steps, int pairs, const std::uint16_t* table,
                                    std::uint32_t* weights, std::size_t weightStride) {
  const RegisterTable<kParts> registers(table);
  for (int k = 0; k < pairs; ++k)
    WeighPairFromRegisters(steps[k], registers, weights + static_cast<std::size_t>(k) * weightStride);
}

inline void WeighPairs(const PairStep* steps, int pairs, const std::uint16_t* table, std::uint16_t* distances,
                       std::uint32_t* weights, std::size_t stride) {
  const int parts = steps[0].tooFar / kTableStep + 1;
  if (parts <= 1) return WeighPairsFromRegisters<1>(steps, pairs, table, weights, stride);
  if (parts <= 2) return WeighPairsFromRegisters<2>(steps, pairs, table, weights, stride);
  if (parts <= 4) return WeighPairsFromRegisters<4>(steps, pairs, table, weights, stride);
  if (parts <= kMostRegisterSteps) return WeighPairsFromRegisters<8>(steps, pairs, table, weights, stride);
  for (int k = 0; k < pairs; ++k) {
    FindPairDistances(steps[k], distances, distances + stride);
    PairWeights<true>(&table, steps[k].tooFar, distances, distances + stride,
                      weights + static_cast<std::size_t>(k) * stride, steps[k].columns);
  }
}

// ---------------------------------------------------------------------------------------------------------------
// Weights by a table for each block. Lanes are blocks; for looking up they must be displacements, so 16
// blocks and up to 12 pairs are turned about before and after.

// Transposes the 4 x 4 words in each of the four quarters of four registers.
struct Quarters {
  __m512i word0;
  __m512i word1;
  __m512i word2;
  __m512i word3;

  HWY_INLINE void Transpose() {
    const __m512i low01 = _mm512_unpacklo_epi32(word0, word1);
    const __m512i high01 = _mm512_unpackhi_epi32(word0, word1);
    const __m512i low23 = _mm512_unpacklo_epi32(word2, word3);
    const __m512i high23 = _mm512_unpackhi_epi32(word2, word3);
    word0 = _mm512_unpacklo_epi64(low01, low23);
    word1 = _mm512_unpackhi_epi64(low01, low23);
    word2 = _mm512_unpacklo_epi64(high01, high23);
    word3 = _mm512_unpackhi_epi64(high01, high23);
  }
};

// Quarter i of `a` and of `b`, which lie in one register as quarters i % 2 and 2 + i % 2, before quarter i of
// `c`, here twice.
struct alignas(64) QuarterOrder {
  std::int64_t lanes[8];
};
constexpr QuarterOrder kJoined[4] = {{{0, 1, 4, 5, 8, 9, 8, 9}},
                                     {{2, 3, 6, 7, 10, 11, 10, 11}},
                                     {{0, 1, 4, 5, 12, 13, 12, 13}},
                                     {{2, 3, 6, 7, 14, 15, 14, 15}}};

// Quarter i of `a`, `b` and `c` belongs to block 4 i of `tables`: looks all three up in that block's table.
template <int kParts>
HWY_INLINE void LookUpQuarters(const std::uint16_t* const* tables, __m512i& a, __m512i& b, __m512i& c) {
  const __m512i lower = _mm512_shuffle_i32x4(a, b, 0x44);
  const __m512i upper = _mm512_shuffle_i32x4(a, b, 0xEE);
  const auto lookUp = [&](int quarter, __m512i distances)
                          HWY_ATTR { return RegisterTable<kParts>(tables[4 * quarter]).LookUp(distances); };
  const auto join = [&](__m512i halves, const QuarterOrder& order) HWY_ATTR {
    return _mm512_permutex2var_epi64(halves, _mm512_load_si512(order.lanes), c);
  };
  const __m512i block0 = lookUp(0, join(lower, kJoined[0]));
  const __m512i block1 = lookUp(1, join(lower, kJoined[1]));
  const __m512i block2 = lookUp(2, join(upper, kJoined[2]));
  const __m512i block3 = lookUp(3, join(upper, kJoined[3]));
  const __m512i first = _mm512_shuffle_i32x4(block0, block1, 0x44);
  const __m512i second = _mm512_shuffle_i32x4(block2, block3, 0x44);
  a = _mm512_shuffle_i32x4(first, second, 0x88);
  b = _mm512_shuffle_i32x4(first, second, 0xDD);
  c = _mm512_shuffle_i32x4(_mm512_shuffle_i32x4(block0, block1, 0xAA),
                           _mm512_shuffle_i32x4(block2, block3, 0xAA), 0x88);
}

// Rows of pairs of distances become rows of pairs of weights; rows past the last pair repeat one before it.
constexpr int kMostTurnedPairs = 12;

template <int kParts>
inline void TurnIntoWeights(const std::uint32_t* const* distances, const std::uint16_t* const* tables,
                            std::uint32_t* const* weights, std::ptrdiff_t blocks, int tooFar) {
  const __m512i beyond = _mm512_set1_epi16(static_cast<std::int16_t>(tooFar));
  for (std::ptrdiff_t b = 0; b < blocks; b += 16) {
    __m512i nearest = _mm512_loadu_si512(distances[0] + b);
    for (int k = 1; k < kMostTurnedPairs; ++k)
      nearest = _mm512_min_epu16(nearest, _mm512_loadu_si512(distances[k] + b));
    if (_mm512_cmplt_epu16_mask(nearest, beyond) == 0) {
      for (int k = 0; k < kMostTurnedPairs; ++k) _mm512_storeu_si512(weights[k] + b, _mm512_setzero_si512());
      continue;
    }
    const auto load = [&](int k) HWY_ATTR { return _mm512_loadu_si512(distances[k] + b); };
    Quarters low{load(0), load(1), load(2), load(3)};
    Quarters middle{load(4), load(5), load(6), load(7)};
    Quarters high{load(8), load(9), load(10), load(11)};
    low.Transpose();
    middle.Transpose();
    high.Transpose();
    LookUpQuarters<kParts>(tables + b, low.word0, middle.word0, high.word0);
    LookUpQuarters<kParts>(tables + b + 1, low.word1, middle.word1, high.word1);
    LookUpQuarters<kParts>(tables + b + 2, low.word2, middle.word2, high.word2);
    LookUpQuarters<kParts>(tables + b + 3, low.word3, middle.word3, high.word3);
    low.Transpose();
    middle.Transpose();
    high.Transpose();
    const auto store = [&](int k, __m512i words) HWY_ATTR { _mm512_storeu_si512(weights[k] + b, words); };
    store(11, high.word3);
    store(10, high.word2);
    store(9, high.word1);
    store(8, high.word0);
    store(7, middle.word3);
    store(6, middle.word2);
    store(5, middle.word1);
    store(4, middle.word0);
    store(3, low.word3);
    store(2, low.word2);
    store(1, low.word1);
    store(0, low.word0);
  }
}

// The distances of a pair's displacements as words.
inline void FindDistancePairs(const PairStep& step, std::uint32_t* pairs) {
  const __m512i lower = kLowerHalves.Load();
  const __m512i upper = kUpperHalves.Load();
  DistanceStream stream(step);
  for (std::ptrdiff_t j = 0; j < step.columns; j += 32) {
    const Both distances = stream.Next(j);
    _mm512_storeu_si512(pairs + j, _mm512_permutex2var_epi16(distances.first, lower, distances.second));
    _mm512_storeu_si512(pairs + j + 16, _mm512_permutex2var_epi16(distances.first, upper, distances.second));
  }
}

template <int kParts>
inline void TurnPairsIntoWeights(const std::uint32_t* pairRows, std::size_t stride, int pairs,
                                 const DirectionStep& direction, std::ptrdiff_t blocks, int tooFar) {
  const std::uint32_t* distances[kMostTurnedPairs];
  std::uint32_t* weights[kMostTurnedPairs];
  for (int place = 0; place < kMostTurnedPairs; ++place) {
    const int k = std::min(place, pairs - 1);
    distances[place] = pairRows + static_cast<std::size_t>(k) * stride + direction.column[k];
    weights[place] = direction.weights[k];
  }
  TurnIntoWeights<kParts>(distances, direction.tables, weights, blocks, tooFar);
}

inline void WeighPairsByIntensity(const PairStep* steps, int pairs, const DirectionStep* directions,
                                  std::ptrdiff_t blocks, std::uint16_t* distances, std::uint32_t* pairRows,
                                  std::size_t stride) {
  const int parts = steps[0].tooFar / kTableStep + 1;
  // Fewer pairs leave too many lanes empty, and longer tables take too many registers.
  if (pairs <= 8 || parts > 4)
    return WeighPairsByIntensityFromMemory(steps, pairs, directions, blocks, distances, stride);
  for (int k = 0; k < pairs; ++k)
    FindDistancePairs(steps[k], pairRows + static_cast<std::size_t>(k) * stride);
  for (int i = 0; i < 2; ++i) {
    if (!directions[i].wanted) continue;
    if (parts <= 2) {
      TurnPairsIntoWeights<2>(pairRows, stride, pairs, directions[i], blocks, steps[0].tooFar);
    } else {
      TurnPairsIntoWeights<4>(pairRows, stride, pairs, directions[i], blocks, steps[0].tooFar);
    }
  }
}

// ---------------------------------------------------------------------------------------------------------------
// Multiply and add.

// sum + the products of neighbouring 16-bit lanes: in one instruction where the processor has it (VNNI),
// which this target does not ask for.
template <bool kFused>
HWY_INLINE __m512i AddProducts(__m512i sum, __m512i a, __m512i b) {
#if HWY_COMPILER_GCC || HWY_COMPILER_CLANG
  if constexpr (kFused) {
    __asm__("vpdpwssd %2, %1, %0" : "+v"(sum) : "v"(a), "v"(b));  // NOLINT(hicpp-no-assembler)
    return sum;
  }
#endif
  return _mm512_add_epi32(sum, _mm512_madd_epi16(a, b));
}

// The samples of one pixel of 16 blocks for all pairs, in two registers: taking them from there spares loads
// across cache lines, of which there would be four a pair. Pairs of samples as in SamplePairs.
template <bool kFused>
class PixelSums {
 public:
  HWY_INLINE PixelSums(const std::uint8_t* samples, bool swapped)
      : samples_(samples), rotation_(_mm512_set1_epi32(swapped ? 16 : 0)), upper_(PairsAt(0)) {}

  // On to the 16 blocks from b on, from left to right.
  HWY_INLINE void Begin(std::ptrdiff_t b, const std::int32_t* sums) {
    lower_ = upper_;
    upper_ = PairsAt(b + 16);
    sum_ = _mm512_loadu_si512(sums + b);
  }
  template <int k>
  HWY_INLINE void Add(__m512i weight) {
    sum_ = AddProducts<kFused>(sum_, _mm512_alignr_epi32(upper_, lower_, k), weight);
  }
  HWY_INLINE void End(std::ptrdiff_t b, std::int32_t* sums) const { _mm512_storeu_si512(sums + b, sum_); }

 private:
  HWY_INLINE __m512i PairsAt(std::ptrdiff_t b) const {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples_ + 2 * b));
    return _mm512_rolv_epi32(_mm512_cvtepu8_epi16(bytes), rotation_);
  }

  const std::uint8_t* samples_;
  __m512i rotation_;
  __m512i lower_;
  __m512i upper_;
  __m512i sum_;
};

template <bool kWeights, bool kFused>
class BlockAdder {
 public:
  HWY_INLINE explicit BlockAdder(const AddStep& step)
      : upperEven_(step.samples, step.swapped),
        upperOdd_(step.samples + 1, step.swapped),
        lowerEven_(step.samples + step.stride, step.swapped),
        lowerOdd_(step.samples + step.stride + 1, step.swapped) {}

  HWY_INLINE void AddAt(const AddStep& step, std::ptrdiff_t b) {
    upperEven_.Begin(b, step.sums[0]);
    upperOdd_.Begin(b, step.sums[1]);
    lowerEven_.Begin(b, step.sums[2]);
    lowerOdd_.Begin(b, step.sums[3]);
    if constexpr (kWeights) weights_ = _mm512_loadu_si512(step.weightSums + b);
    AddFrom<0>(step, b);
    upperEven_.End(b, step.sums[0]);
    upperOdd_.End(b, step.sums[1]);
    lowerEven_.End(b, step.sums[2]);
    lowerOdd_.End(b, step.sums[3]);
    if constexpr (kWeights) _mm512_storeu_si512(step.weightSums + b, weights_);
  }

 private:
  // Pair k and those after it, as far as there are any.
  template <int k>
  HWY_INLINE void AddFrom(const AddStep& step, std::ptrdiff_t b) {
    if (k >= step.pairs) return;
    const __m512i weight = _mm512_loadu_si512(step.weights[k] + b);
    upperEven_.template Add<k>(weight);
    upperOdd_.template Add<k>(weight);
    lowerEven_.template Add<k>(weight);
    lowerOdd_.template Add<k>(weight);
    if constexpr (kWeights) weights_ = AddProducts<kFused>(weights_, weight, _mm512_set1_epi16(1));
    if constexpr (k + 1 < kMostPairs) AddFrom<k + 1>(step, b);
  }

  PixelSums<kFused> upperEven_;
  PixelSums<kFused> upperOdd_;
  PixelSums<kFused> lowerEven_;
  PixelSums<kFused> lowerOdd_;
  __m512i weights_;
};

template <bool kWeights, bool kFused>
inline void AddPairsOf16(const AddStep& step) {
  BlockAdder<kWeights, kFused> adder(step);
  for (std::ptrdiff_t b = 0; b < step.blocks; b += 16) adder.AddAt(step, b);
}

template <bool kWeights>
inline void AddPairs(const AddStep& step) {
  if (step.fusedProducts) {
    AddPairsOf16<kWeights, true>(step);
  } else {
    AddPairsOf16<kWeights, false>(step);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace mirellon::engine
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET == HWY_AVX3

#endif  // MIRELLON_SIMILARITY_AVX512_INL_H_
