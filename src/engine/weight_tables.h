// The tables that turn a patch distance into a weight, and the small cache that keeps them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "hwy/aligned_allocator.h"

namespace mirellon::engine {

inline constexpr int kWeightEntries = 9216;         // patch distances 0 to 9215; a distance never passes 9180
inline constexpr std::uint32_t kWeightOne = 10000;  // weights are integers scaled by this
inline constexpr int kIntensities = 256;
// Tables are padded with zeros to whole steps of so many entries, up to kMostRegisterSteps to a power of two.
inline constexpr int kTableStep = 64;
inline constexpr int kMostRegisterSteps = 8;

// Weights for one pair (dynamicity d, variance s): for intensity v and patch distance p
//   W_v(p) = floor(exp(-p^3 / 300 / D_v) * 10000 + 0.5),  W_v(0) = 10000,
//   D_v = (v d / 256 + 1) s for d > 0,  ((255 - v)(-d) / 256 + 1) s for d < 0,  s for d = 0.
// Weights fall with the distance and are zero beyond a cut-off, so only the part before it is stored, and all
// intensities share one table when d is 0. Immutable once built; any thread may read.
class WeightTables {
 public:
  // Throws std::bad_alloc when memory is refused (the cache catches it).
  WeightTables(double dynamicity, double variance);

  // v 0 to 255, distance 0 to kWeightEntries - 1.
  [[nodiscard]] std::uint32_t Weight(int v, int distance) const {
    return distance < storedEntries_ ? Table(v)[distance] : 0;
  }

  // Entries kept of each table, at most one more than there are distances; the last is zero: reading at
  // min(distance, storedEntries() - 1) is exact.
  [[nodiscard]] int storedEntries() const { return storedEntries_; }
  // The storedEntries() weights of intensity v; consecutive intensities lie tableStride() entries apart, 0
  // when all share one table.
  [[nodiscard]] const std::uint16_t* Table(int v) const {
    return weights_.get() + static_cast<std::size_t>(v) * tableStride_;
  }
  [[nodiscard]] std::size_t tableStride() const { return tableStride_; }

 private:
  int storedEntries_ = 0;
  std::size_t tableStride_ = 0;
  hwy::AlignedFreeUniquePtr<std::uint16_t[]> weights_;
};

// Seven slots used as a ring. Previews and tiles ask again and again for the same few pairs. Safe from any
// thread; tables handed out stay alive when their slot is filled anew.
class WeightTableCache {
 public:
  static constexpr std::size_t kSlots = 7;

  // The first slot whose two values both lie within 0.001 of the wanted ones; when none does, the ring's next
  // slot is built. Null when memory is refused.
  [[nodiscard]] std::shared_ptr<const WeightTables> Acquire(double dynamicity, double variance);

 private:
  struct Slot {
    double dynamicity = 0.0;
    double variance = 0.0;
    std::shared_ptr<const WeightTables> tables;  // null: not valid
  };
  [[nodiscard]] std::shared_ptr<const WeightTables> Find(double dynamicity, double variance) const;

  std::mutex mutex_;
  std::array<Slot, kSlots> slots_;
  std::size_t next_ = 0;
};

}  // namespace mirellon::engine
