#include "base/large_memory.h"

#include <cstdlib>

#include <sys/mman.h>

namespace mirellon::base {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20U;

}  // namespace

void* AllocateLarge(std::size_t size) {
  // malloc, not new: refused memory comes back as null, and plain records own it.
  // NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
  if (size < 2 * kLargePage) return std::malloc(size);
  const std::size_t pages = (size + kLargePage - 1) / kLargePage;
  void* memory = std::aligned_alloc(kLargePage, pages * kLargePage);
  // NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
  if (memory == nullptr) return nullptr;
  // A wish: without it the memory serves as well, only slower.
  (void)madvise(memory, pages * kLargePage, MADV_HUGEPAGE);
  return memory;
}

}  // namespace mirellon::base
