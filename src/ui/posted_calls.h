// Calls brought from any thread to an owner's.
#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <mutex>

namespace mirellon::ui {

// Belongs to the thread that made it, and makes the calls there, from its event loop, in the order in which
// they were posted. What has not been called when it goes is not called any more.
//
// The calls wait under a mutex of its own rather than in Qt's events: what a call brings along is then handed
// over where tools that watch threads see it, too.
class PostedCalls : public QObject {
  Q_OBJECT

 public:
  PostedCalls();

  // From any thread. Throws std::bad_alloc when memory is refused.
  void Post(std::function<void()> call);

 signals:
  void posted();

 private:
  void CallNext();

  std::mutex mutex_;  // guards what follows
  std::deque<std::function<void()>> calls_;
};

}  // namespace mirellon::ui
