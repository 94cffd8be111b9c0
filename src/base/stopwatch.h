// How long a step took.
#pragma once

#include <chrono>

namespace mirellon::base {

class Stopwatch {
 public:
  // Milliseconds since the last call, or since birth.
  double Lap() {
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double, std::milli> passed = now - last_;
    last_ = now;
    return passed.count();
  }

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

}  // namespace mirellon::base
