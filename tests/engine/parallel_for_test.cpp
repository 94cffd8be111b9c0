#include "engine/parallel_for.h"

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "engine/simd_target.h"

namespace mirellon {
namespace {

TEST(ParallelFor, RunsEveryPieceOnceOnANumberedThread) {
  for (const std::uint32_t threads : {0U, 1U, 2U, 7U, 64U}) {
    for (const int count : {0, 1, 5, 200}) {
      std::vector<std::atomic<int>> runs(static_cast<std::size_t>(count));
      std::atomic<int> strayThreads{0};
      engine::ParallelFor(threads, count, [&](int i, std::uint32_t thread) {
        ++runs[static_cast<std::size_t>(i)];
        if (thread > 0 && thread >= threads) ++strayThreads;
      });
      for (const std::atomic<int>& times : runs) EXPECT_EQ(times, 1);
      EXPECT_EQ(strayThreads, 0);
    }
  }
}

TEST(SimdTarget, AForcedTargetIsTheOneInUseAndUnknownNamesAreRefused) {
  const std::string best = engine::SimdTargetName();
  ASSERT_FALSE(engine::ForceSimdTarget("scalar"));
  EXPECT_EQ(engine::SimdTargetName(), "scalar");
  for (const char* unknown : {"", "SCALAR", "avx9", "scalar "}) {
    EXPECT_TRUE(engine::ForceSimdTarget(unknown)) << unknown;
    EXPECT_EQ(engine::SimdTargetName(), "scalar");
  }
  ASSERT_FALSE(engine::ForceSimdTarget(best));
  EXPECT_EQ(engine::SimdTargetName(), best);
}

}  // namespace
}  // namespace mirellon
