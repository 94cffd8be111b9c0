#include "batch/time_estimate.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

namespace mirellon::batch {

std::uint32_t EstimateTotal(std::uint32_t elapsed, std::uint32_t total, std::uint32_t finished) {
  const std::uint64_t estimate = std::uint64_t{elapsed} * total / (std::uint64_t{finished} + 1);
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(estimate, std::numeric_limits<std::uint32_t>::max()));
}

std::string ClockText(std::uint32_t seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2u:%.2u", seconds / 60, seconds % 60);
  return text.data();
}

}  // namespace mirellon::batch
