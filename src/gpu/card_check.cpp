#include "gpu/card_check.h"

#include <algorithm>

namespace mirellon::gpu {

bool RendererExcluded(std::string_view renderer) {
  const auto contains = [renderer](const char* part) {
    return renderer.find(part) != std::string_view::npos;
  };
  return contains("Radeon") && (contains("1050") || contains("1300"));
}

const char* FirstMissingExtension(const std::function<bool(const char*)>& supported) {
  const auto* const missing =
      std::find_if_not(kNeededExtensions.begin(), kNeededExtensions.end(), std::cref(supported));
  return missing == kNeededExtensions.end() ? nullptr : *missing;
}

}  // namespace mirellon::gpu
