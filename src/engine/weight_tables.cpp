#include "engine/weight_tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <vector>

namespace mirellon::engine {

namespace {

double Divisor(int v, double dynamicity, double variance) {
  if (dynamicity > 0) return (v * dynamicity * 0.00390625 + 1) * variance;
  if (dynamicity < 0) return ((255 - v) * -dynamicity * 0.00390625 + 1) * variance;
  return variance;
}

// The weight before it is rounded down. The cube is exact in a double: 9215^3 < 2^53.
double RawWeight(int distance, double divisor) {
  const double s = distance;
  return std::exp(-(s * s * s) / 300 / divisor) * kWeightOne + 0.5;
}

// The weights of one intensity up to the first zero, that one included. They never rise again: a raw weight
// below 1 has a neighbour below 1.
std::vector<std::uint16_t> BuildTable(double divisor) {
  std::vector<std::uint16_t> table{static_cast<std::uint16_t>(kWeightOne)};
  for (int distance = 1; distance < kWeightEntries; ++distance) {
    const double raw = RawWeight(distance, divisor);
    table.push_back(static_cast<std::uint16_t>(std::floor(raw)));
    // Well under the rounding limit, so that no wobble in the last place of exp matters.
    if (raw < 0.9) return table;
  }
  return table;
}

// Whole steps, and while they fit registers a power of two of them.
std::size_t PaddedLength(std::size_t entries) {
  constexpr std::size_t kStep = kTableStep;
  const std::size_t steps = (entries + kStep - 1) / kStep;
  return kStep * (steps <= kMostRegisterSteps ? std::bit_ceil(steps) : steps);
}

bool Near(double a, double b) {
  return std::abs(a - b) < 0.001;
}

}  // namespace

WeightTables::WeightTables(double dynamicity, double variance) {
  const int distinct = dynamicity == 0 ? 1 : kIntensities;
  // The divisor is largest, and so the table longest, at one of the two ends.
  const auto longest = std::max(BuildTable(Divisor(0, dynamicity, variance)).size(),
                                BuildTable(Divisor(kIntensities - 1, dynamicity, variance)).size());
  // One zero more, so that the last entry is zero even if the longest table has no zero of its own.
  storedEntries_ = static_cast<int>(longest) + 1;
  const std::size_t length = PaddedLength(longest + 1);
  tableStride_ = distinct == 1 ? 0 : length;
  const std::size_t all = length * static_cast<std::size_t>(distinct);
  weights_ = hwy::AllocateAligned<std::uint16_t>(all);
  if (weights_ == nullptr) throw std::bad_alloc();
  std::fill_n(weights_.get(), all, std::uint16_t{0});
  for (int v = 0; v < distinct; ++v) {
    const std::vector<std::uint16_t> table = BuildTable(Divisor(v, dynamicity, variance));
    std::copy(table.begin(), table.end(), weights_.get() + static_cast<std::size_t>(v) * length);
  }
}

std::shared_ptr<const WeightTables> WeightTableCache::Find(double dynamicity, double variance) const {
  for (const Slot& slot : slots_) {
    if (slot.tables != nullptr && Near(slot.dynamicity, dynamicity) && Near(slot.variance, variance)) {
      return slot.tables;
    }
  }
  return nullptr;
}

std::shared_ptr<const WeightTables> WeightTableCache::Acquire(double dynamicity, double variance) {
  const std::scoped_lock lock(mutex_);
  if (auto found = Find(dynamicity, variance)) return found;
  Slot& slot = slots_[next_];
  slot = Slot{};
  try {
    slot = {dynamicity, variance, std::make_shared<const WeightTables>(dynamicity, variance)};
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  next_ = (next_ + 1) % kSlots;
  return slot.tables;
}

}  // namespace mirellon::engine
