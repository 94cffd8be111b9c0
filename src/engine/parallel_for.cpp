#include "engine/parallel_for.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace mirellon::engine {

void ParallelFor(std::uint32_t threads, int count, const std::function<void(int, std::uint32_t)>& piece) {
  std::atomic<int> next{0};
  const auto work = [&](std::uint32_t thread) {
    for (int i = next.fetch_add(1); i < count; i = next.fetch_add(1)) piece(i, thread);
  };
  const std::uint32_t wanted =
      std::min<std::uint32_t>(threads, static_cast<std::uint32_t>(std::max(count, 1)));
  std::vector<std::jthread> workers;
  try {
    workers.reserve(wanted);
    for (std::uint32_t t = 1; t < wanted; ++t) workers.emplace_back(work, t);
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the threads that did start take it all
  }
  work(0);
}

}  // namespace mirellon::engine
