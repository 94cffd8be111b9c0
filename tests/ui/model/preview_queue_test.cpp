#include "ui/model/preview_queue.h"

#include <gtest/gtest.h>

namespace mirellon::ui {
namespace {

using Action = PreviewQueue::Action;
using Job = PreviewQueue::Job;

PreviewWish Wish(int left) {
  PreviewWish wish;
  wish.rect = {left, 0, left + 10, 10};
  return wish;
}

// Takes what must be a preview and tells where it lies.
int TakePreview(PreviewQueue& queue) {
  PreviewWish wish;
  EXPECT_EQ(queue.Take(wish), Job::kPreview);
  return wish.rect.left;
}

TEST(PreviewQueueTest, TheLatestWishWins) {
  PreviewQueue queue;
  EXPECT_EQ(queue.WishPreview(Wish(1)), Action::kStart);
  EXPECT_EQ(TakePreview(queue), 1);
  EXPECT_EQ(queue.WishPreview(Wish(2)), Action::kAbort);
  EXPECT_EQ(queue.WishPreview(Wish(3)), Action::kNothing) << "it is stopping already";
  const PreviewQueue::Outcome stopped = queue.Finished();
  EXPECT_FALSE(stopped.wanted);
  EXPECT_EQ(stopped.next, Action::kStart);
  EXPECT_EQ(TakePreview(queue), 3);
  const PreviewQueue::Outcome done = queue.Finished();
  EXPECT_TRUE(done.wanted);
  EXPECT_EQ(done.next, Action::kNothing);
  EXPECT_TRUE(queue.idle());
}

TEST(PreviewQueueTest, ARunGoesBeforePreviewsAndHoldsThemBack) {
  PreviewQueue queue;
  PreviewWish wish;
  (void)queue.WishPreview(Wish(1));
  (void)TakePreview(queue);
  EXPECT_EQ(queue.WishRun(), Action::kAbort);
  EXPECT_EQ(queue.WishPreview(Wish(2)), Action::kNothing);
  EXPECT_EQ(queue.Take(wish), Job::kNone) << "one job at a time";
  EXPECT_FALSE(queue.Finished().wanted);
  EXPECT_EQ(queue.Take(wish), Job::kRun);
  EXPECT_EQ(queue.WishPreview(Wish(3)), Action::kNothing) << "a run is not stopped for a preview";
  EXPECT_EQ(queue.WishRun(), Action::kNothing);
  const PreviewQueue::Outcome done = queue.Finished();
  EXPECT_TRUE(done.wanted);
  EXPECT_EQ(done.next, Action::kStart);
  EXPECT_EQ(TakePreview(queue), 3);
}

TEST(PreviewQueueTest, NothingIsWantedOnceDropped) {
  PreviewQueue queue;
  PreviewWish wish;
  EXPECT_EQ(queue.Drop(), Action::kNothing);
  (void)queue.WishRun();
  EXPECT_EQ(queue.Take(wish), Job::kRun);
  (void)queue.WishPreview(Wish(1));
  EXPECT_EQ(queue.Drop(), Action::kAbort);
  EXPECT_EQ(queue.Drop(), Action::kNothing);
  EXPECT_FALSE(queue.idle()) << "it has not ended yet";
  const PreviewQueue::Outcome stopped = queue.Finished();
  EXPECT_FALSE(stopped.wanted);
  EXPECT_EQ(stopped.next, Action::kNothing);
  EXPECT_TRUE(queue.idle());
}

}  // namespace
}  // namespace mirellon::ui
