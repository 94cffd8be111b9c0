#include "engine/engine_context.h"

#include <thread>

#include <sched.h>

namespace mirellon::engine {

std::uint32_t CountProcessors() {
  cpu_set_t set;
  CPU_ZERO(&set);
  std::uint32_t count = 0;
  if (sched_getaffinity(0, sizeof set, &set) == 0) count = static_cast<std::uint32_t>(CPU_COUNT(&set));
  if (count == 0) count = std::thread::hardware_concurrency();
  count %= 256;
  return count == 0 ? 1 : count;
}

}  // namespace mirellon::engine
