#include "ui/background_worker.h"

#include <QTest>
#include <new>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>

namespace mirellon::ui {
namespace {

std::size_t StackOfThisThread() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
  void* address = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &address, &size);
  pthread_attr_destroy(&attributes);
  return size;
}

TEST(BackgroundWorkerTest, HasTheStackAskedFor) {
  constexpr unsigned kBytes = 100U << 20U;
  BackgroundWorker worker(nullptr, kBytes);
  std::size_t stack = 0;
  bool done = false;
  worker.Post([&] { stack = StackOfThisThread(); }, [&](bool) { done = true; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 30000));
  EXPECT_GE(stack, kBytes);
}

TEST(BackgroundWorkerTest, DoesOneAfterTheOtherAndTellsOfMemory) {
  BackgroundWorker worker;
  std::vector<int> worked;  // by the worker
  std::vector<bool> told;
  for (int i = 0; i < 3; ++i) {
    worker.Post(
        [&worked, i] {
          worked.push_back(i);
          if (i == 1) throw std::bad_alloc();
        },
        [&told](bool outOfMemory) { told.push_back(outOfMemory); });
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return told.size() == 3; }, 30000));
  EXPECT_EQ(worked, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(told, (std::vector<bool>{false, true, false}));
}

}  // namespace
}  // namespace mirellon::ui
