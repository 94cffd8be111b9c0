#include "batch/time_estimate.h"

#include <gtest/gtest.h>

namespace mirellon::batch {

TEST(TimeEstimateTest, ProjectsTheWholeRun) {
  EXPECT_EQ(EstimateTotal(7, 10, 0), 70U);
  EXPECT_EQ(EstimateTotal(7, 10, 2), 23U) << "cut, not rounded";
  EXPECT_EQ(EstimateTotal(10, 10, 9), 10U);
  EXPECT_EQ(EstimateTotal(30, 10, 11), 25U) << "more were finished than counted";
  EXPECT_EQ(EstimateTotal(5, 0, 0), 0U);
  EXPECT_EQ(EstimateTotal(100000, 100000, 0), 4294967295U);
}

TEST(TimeEstimateTest, ShowsMinutesAndSeconds) {
  EXPECT_EQ(ClockText(0), "00:00");
  EXPECT_EQ(ClockText(61), "01:01");
  EXPECT_EQ(ClockText(3599), "59:59");
  EXPECT_EQ(ClockText(360005), "6000:05");
}

}  // namespace mirellon::batch
