#include "engine/parallel_for.h"

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "engine/simd_target.h"

namespace mirellon::engine {
namespace {

TEST(ParallelFor, RunsEveryPieceOnceOnANumberedThread) {
  for (const std::uint32_t threads : {0U, 1U, 2U, 7U, 64U}) {
    for (const int count : {0, 1, 5, 200}) {
      std::vector<std::atomic<int>> runs(count);
      std::atomic<int> strayThreads{0};
      ParallelFor(threads, count, [&](int i, std::uint32_t thread) {
        ++runs[i];
        if (thread > 0 && thread >= threads) ++strayThreads;
      });
      for (const std::atomic<int>& times : runs) EXPECT_EQ(times, 1);
      EXPECT_EQ(strayThreads, 0);
    }
  }
}

TEST(SimdTarget, AForcedTargetIsTheOneInUseAndUnknownNamesAreRefused) {
  const std::string best = SimdTargetName();
  ASSERT_FALSE(ForceSimdTarget("scalar"));
  for (const char* unknown : {"", "SCALAR", "avx9", "scalar "}) {
    EXPECT_TRUE(ForceSimdTarget(unknown)) << unknown;
    EXPECT_EQ(SimdTargetName(), "scalar");
  }
  ASSERT_FALSE(ForceSimdTarget(best));
}

}  // namespace
}  // namespace mirellon::engine
