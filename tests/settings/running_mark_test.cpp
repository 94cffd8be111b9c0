#include "settings/running_mark.h"

#include <optional>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirellon::settings {
namespace {

TEST(RunningMarkTest, OnlyTheFirstStartAndTheLastEndAreAlone) {
  const test::TemporaryFolder folder;
  std::optional<RunningMark> first(folder.path());
  EXPECT_FALSE(first->othersRan());
  std::optional<RunningMark> second(folder.path());
  EXPECT_TRUE(second->othersRan());
  EXPECT_FALSE(first->Leave());
  first.reset();
  EXPECT_TRUE(RunningMark(folder.path()).othersRan());
  EXPECT_TRUE(second->Leave());
  EXPECT_FALSE(RunningMark(folder.path()).othersRan()) << "it has left";
}

TEST(RunningMarkTest, TheSystemTakesAwayTheMarkOfOneThatDied) {
  const test::TemporaryFolder folder;
  { const RunningMark died(folder.path()); }
  RunningMark next(folder.path());
  EXPECT_FALSE(next.othersRan());
  EXPECT_TRUE(next.Leave());
}

TEST(RunningMarkTest, WithoutAFileToLockEveryInstanceIsAlone) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "file", "");
  RunningMark first(folder / "file");
  RunningMark second(folder / "file");
  EXPECT_FALSE(second.othersRan());
  EXPECT_TRUE(first.Leave());
}

}  // namespace
}  // namespace mirellon::settings
