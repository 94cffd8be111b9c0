#include "ui/posted_calls.h"

#include <QCoreApplication>
#include <QTest>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace mirellon::ui {
namespace {

TEST(PostedCallsTest, AreMadeInOrderOnTheOwnersThreadAlsoFromWithin) {
  PostedCalls calls;
  const std::thread::id owner = std::this_thread::get_id();
  std::vector<int> made;
  std::jthread other([&] {
    for (int i = 0; i < 4; ++i) {
      calls.Post([&made, owner, i] {
        EXPECT_EQ(std::this_thread::get_id(), owner);
        made.push_back(i);
        if (i != 1) return;
        // A dialog's event loop.
        EXPECT_TRUE(QTest::qWaitFor([&made] { return made.size() == 4; }, 30000));
      });
    }
  });
  EXPECT_TRUE(QTest::qWaitFor([&made] { return made.size() == 4; }, 30000));
  EXPECT_EQ(made, (std::vector<int>{0, 1, 2, 3}));
}

TEST(PostedCallsTest, EndWithTheirOwner) {
  bool made = false;
  std::optional<PostedCalls> calls(std::in_place);
  calls->Post([&made] { made = true; });
  EXPECT_FALSE(made);
  calls.reset();
  QCoreApplication::processEvents();
  EXPECT_FALSE(made);
}

}  // namespace
}  // namespace mirellon::ui
