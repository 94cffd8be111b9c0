// How long a run will take.
#pragma once

#include <cstdint>
#include <string>

namespace mirellon::batch {

// The projected duration of the whole run, in seconds, when one more image is done after `elapsed` seconds
// and `finished` were done before it: elapsed * total / (finished + 1). Not the time that remains.
[[nodiscard]] std::uint32_t EstimateTotal(std::uint32_t elapsed, std::uint32_t total, std::uint32_t finished);

// "%.2u:%.2u" of minutes and seconds; minutes may take more than two digits.
[[nodiscard]] std::string ClockText(std::uint32_t seconds);

}  // namespace mirellon::batch
