#include "ui/folder_walker.h"

#include <cstdlib>
#include <memory>
#include <utility>

namespace mirellon::ui {

void FolderWalker::Go(const std::filesystem::path& from, ui::Step step) {
  waiting_ += step == Step::kNext ? 1 : -1;
  if (!going_) Begin(from, from);
}

void FolderWalker::Drop() {
  ++walks_;
  waiting_ = 0;
  going_ = false;
}

void FolderWalker::Run(Walk& walk) {
  for (; walk.steps > 0; --walk.steps) {
    std::filesystem::path next = Neighbour(walk.place, walk.step);
    walk.atEnd = next.empty();
    if (walk.atEnd) return;
    walk.place = std::move(next);
  }
}

void FolderWalker::Begin(const std::filesystem::path& start, const std::filesystem::path& place) {
  if (waiting_ == 0) return;
  const Step step = waiting_ > 0 ? Step::kNext : Step::kPrevious;
  auto walk = std::make_shared<Walk>(Walk{start, place, step, std::abs(std::exchange(waiting_, 0))});
  going_ = true;
  worker_.Post([walk] { Run(*walk); },
               [this, walk, number = ++walks_](bool) {
                 if (number == walks_) Ended(*walk);
               });
}

void FolderWalker::Ended(const Walk& walk) {
  going_ = false;
  const bool sameWay = (waiting_ > 0) == (walk.step == Step::kNext);
  if (walk.atEnd && sameWay) waiting_ = 0;
  if (waiting_ != 0) return Begin(walk.start, walk.place);
  emit arrived(walk.place == walk.start ? std::filesystem::path() : walk.place, walk.step, walk.atEnd);
}

}  // namespace mirellon::ui
