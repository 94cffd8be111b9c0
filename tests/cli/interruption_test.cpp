#include "cli/interruption.h"

#include <chrono>
#include <csignal>

#include <gtest/gtest.h>

#include "support/small_disk.h"

namespace mirellon::cli {
namespace {

TEST(InterruptionTest, SignalsAtOnceAreOneRequestAndALaterOneEndsTheProcess) {
  const int status = test::RunInChild([] {
    base::RunControl control;
    WatchSignals(control);
    std::raise(SIGTERM);
    std::raise(SIGINT);
    if (!control.Aborted() || CaughtSignal() != SIGTERM) return 1;
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(150)) {
    }
    std::raise(SIGINT);
    return 2;
  });
  EXPECT_EQ(status, 130);
}

}  // namespace
}  // namespace mirellon::cli
