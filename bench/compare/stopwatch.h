// The time of repeated runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace mirellon::bench {

// The median time of `runs` calls, in milliseconds.
template <typename F>
double MedianMilliseconds(int runs, F run) {
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    const auto start = std::chrono::steady_clock::now();
    run();
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
    times.push_back(passed.count());
  }
  std::sort(times.begin(), times.end());
  const std::size_t middle = times.size() / 2;
  return times.size() % 2 == 1 ? times[middle] : (times[middle - 1] + times[middle]) / 2.0;
}

}  // namespace mirellon::bench
