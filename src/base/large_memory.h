// Memory for whole pictures.
#pragma once

#include <cstddef>

namespace mirellon::base {

// Storage of `size` bytes, contents undefined; null when it is refused. From a few megabytes on the system is
// asked for large pages, which saves thousands of page faults a picture. Freed with std::free.
[[nodiscard]] void* AllocateLarge(std::size_t size);

}  // namespace mirellon::base
