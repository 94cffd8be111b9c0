#include "cli/interruption.h"

#include <chrono>
#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

namespace mirellon::cli {

void RaiseThree() {
  base::RunControl control;
  WatchSignals(control);
  std::raise(SIGTERM);
  std::raise(SIGINT);
  if (!control.Aborted() || CaughtSignal() != SIGTERM) std::abort();
  const auto start = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(150)) {
  }
  std::raise(SIGINT);
}

TEST(InterruptionTest, SignalsAtOnceAreOneRequestAndALaterOneEndsTheProcess) {
  EXPECT_EXIT(RaiseThree(), ::testing::ExitedWithCode(130), "");
}

}  // namespace mirellon::cli
