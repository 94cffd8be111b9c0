// The time of repeated runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <vector>

namespace mirellon::bench {

enum class Clock {
  kWall,
  kProcessor,  // what the process used, of all its threads: for one thread on a busy machine
};

inline double Milliseconds(Clock clock) {
  if (clock == Clock::kProcessor) return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  const std::chrono::duration<double, std::milli> now = std::chrono::steady_clock::now().time_since_epoch();
  return now.count();
}

// The median time of `runs` calls, in milliseconds.
template <typename F>
double MedianMilliseconds(Clock clock, int runs, F run) {
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    const double start = Milliseconds(clock);
    run();
    times.push_back(Milliseconds(clock) - start);
  }
  std::sort(times.begin(), times.end());
  const std::size_t middle = times.size() / 2;
  return times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2.0;
}

}  // namespace mirellon::bench
