// What computes.
#pragma once

#include <array>

#include "cli/value_text.h"

namespace mirellon::cli {

enum class Backend { kCpu, kGpu, kFusion };

inline constexpr std::array<Choice, 3> kBackendChoices{{{"cpu", static_cast<int>(Backend::kCpu)},
                                                        {"gpu", static_cast<int>(Backend::kGpu)},
                                                        {"fusion", static_cast<int>(Backend::kFusion)}}};

[[nodiscard]] constexpr const char* BackendName(Backend backend) {
  return kBackendChoices.at(static_cast<std::size_t>(backend)).word;
}

}  // namespace mirellon::cli
