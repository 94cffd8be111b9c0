#include "cli/terminal_progress.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace mirellon::cli {
namespace {

using std::chrono::milliseconds;

class TerminalProgressTest : public ::testing::Test {
 protected:
  // What was written since the last call.
  std::string Written() {
    std::string text = stream_.str();
    stream_.str("");
    return text;
  }

  // The whole line at full width.
  static std::string Bar(const char* percent, std::size_t filled) {
    std::string line("\rdenoising ");
    line += percent;
    line += " % [";
    line.append(filled, '#').append(50 - filled, '.') += ']';
    return line;
  }

  std::ostringstream stream_;
  int columns_ = 80;
  std::chrono::steady_clock::time_point now_;
  TerminalProgress progress_{stream_, "denoising", [this] { return columns_; }, [this] { return now_; }};
};

TEST_F(TerminalProgressTest, DrawsAtMostTenTimesASecond) {
  progress_.SetRange(0, 200);
  EXPECT_EQ(Written(), Bar("  0", 0));
  now_ += milliseconds(99);
  progress_.Advance(20);
  EXPECT_EQ(Written(), "");
  now_ += milliseconds(1);
  progress_.Advance(80);
  EXPECT_EQ(Written(), Bar(" 50", 25));
  now_ += milliseconds(1000);
  progress_.Advance(1);  // still 50 %
  EXPECT_EQ(Written(), "");
}

TEST_F(TerminalProgressTest, PositionsOutsideTheRangeKeepTheBarInside) {
  progress_.SetRange(0, 10);
  progress_.SetStep(1);
  progress_.SetPosition(1);
  for (const int n : {2'000'000'000, 2'000'000'000}) {
    now_ += milliseconds(100);
    progress_.Advance(n);
  }
  EXPECT_NE(Written().find(Bar("100", 50)), std::string::npos);
  now_ += milliseconds(100);
  progress_.SetPosition(-5);
  EXPECT_NE(Written().find("  0 %"), std::string::npos);
  now_ += milliseconds(100);
  progress_.SetRange(0, 0);
  progress_.Advance(3);
  EXPECT_EQ(Written().find('#'), std::string::npos);
}

TEST_F(TerminalProgressTest, StaysWithinTheTerminalAndCoversLongerLines) {
  progress_.SetRange(0, 100);
  const std::size_t full = Written().size();
  for (const int columns : {30, 20, 10, 1, 0}) {
    columns_ = columns;
    now_ += milliseconds(100);
    progress_.Advance(1);
    std::string line = Written();
    EXPECT_LE(line.size(), full);
    line.erase(line.find_last_not_of(' ') + 1);
    EXPECT_LE(static_cast<int>(line.size()) - 1, std::max(0, columns - 1)) << columns;
  }
}

TEST_F(TerminalProgressTest, FinishWipesTheLineOnceAndForGood) {
  progress_.SetRange(0, 100);
  const std::size_t length = Written().size() - 1;
  progress_.Finish();
  std::string wiped(length + 2, ' ');
  wiped.front() = wiped.back() = '\r';
  EXPECT_EQ(Written(), wiped);
  now_ += milliseconds(500);
  progress_.Advance(50);
  progress_.Finish();
  EXPECT_EQ(Written(), "");
}

}  // namespace
}  // namespace mirellon::cli
