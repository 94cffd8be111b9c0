#include "cli/terminal_progress.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace mirellon::cli {

class TerminalProgressTest : public ::testing::Test {
 protected:
  // What one more step of n draws that long after the last.
  std::string Advanced(int n, int milliseconds = 100) {
    now_ += std::chrono::milliseconds(milliseconds);
    stream_.str("");
    progress_.Advance(n);
    return stream_.str();
  }

  // The whole line at full width.
  static std::string Bar(const char* percent, std::size_t filled) {
    return std::string("\rdenoising ") + percent + " % [" + std::string(filled, '#') +
           std::string(50 - filled, '.') + "]";
  }

  std::ostringstream stream_;
  int columns_ = 80;
  std::chrono::steady_clock::time_point now_;
  TerminalProgress progress_{stream_, "denoising", [this] { return columns_; }, [this] { return now_; }};
};

TEST_F(TerminalProgressTest, DrawsAtMostTenTimesASecond) {
  progress_.SetRange(0, 200);
  EXPECT_EQ(stream_.str(), Bar("  0", 0));
  EXPECT_EQ(Advanced(20, 99), "");
  EXPECT_EQ(Advanced(80, 1), Bar(" 50", 25));
  EXPECT_EQ(Advanced(1, 1000), "") << "still 50 %";
}

TEST_F(TerminalProgressTest, PositionsOutsideTheRangeKeepTheBarInside) {
  progress_.SetRange(0, 10);
  EXPECT_EQ(Advanced(2'000'000'000), Bar("100", 50));
  EXPECT_EQ(Advanced(2'000'000'000), "");
  progress_.SetPosition(-50);
  EXPECT_EQ(stream_.str(), Bar("  0", 0));
}

TEST_F(TerminalProgressTest, StaysWithinTheTerminalAndCoversLongerLines) {
  progress_.SetRange(0, 100);
  const std::size_t full = stream_.str().size();
  for (const int columns : {30, 20, 10, 1, 0}) {
    columns_ = columns;
    std::string line = Advanced(1);
    EXPECT_LE(line.size(), full);
    line.erase(line.find_last_not_of(' ') + 1);
    EXPECT_LE(static_cast<int>(line.size()) - 1, std::max(0, columns - 1)) << columns;
  }
}

TEST_F(TerminalProgressTest, FinishWipesTheLineOnceAndForGood) {
  progress_.SetRange(0, 100);
  const std::string drawn = stream_.str();
  progress_.Finish();
  EXPECT_EQ(stream_.str(), drawn + "\r" + std::string(drawn.size() - 1, ' ') + "\r");
  EXPECT_EQ(Advanced(50, 500), "");
}

}  // namespace mirellon::cli
