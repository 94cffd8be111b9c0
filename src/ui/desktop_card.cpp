#include "ui/desktop_card.h"

#include <QThread>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>

namespace mirellon::ui {

namespace {

// Brings what is to be shown to the window's thread, each text once until it has been read. Asks nothing.
class QueuedMessages : public base::WindowServices {
 public:
  QueuedMessages(PostedCalls& calls, base::WindowServices& shown)
      : window_(QThread::currentThread()), calls_(&calls), shown_(&shown) {}

  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override {
    {
      const std::scoped_lock lock(mutex_);
      if (calls_ == nullptr || !waiting_.insert(text).second) return;
      if (QThread::currentThread() != window_) {
        calls_->Post([this, text, caption, kind] { ShowNow(text, caption, kind); });
        return;
      }
    }
    ShowNow(text, caption, kind);
  }
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& /*title*/) override { return {}; }
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& /*title*/,
                                                   const std::filesystem::path& /*proposal*/) override {
    return {};
  }

  // From now on nothing is shown.
  void Close() {
    const std::scoped_lock lock(mutex_);
    calls_ = nullptr;
    shown_ = nullptr;
  }

 private:
  // On the window's thread, which is the one that closes, too.
  void ShowNow(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) {
    if (shown_ != nullptr) shown_->ShowMessage(text, caption, kind);
    const std::scoped_lock lock(mutex_);
    waiting_.erase(text);
  }

  QThread* window_;
  std::mutex mutex_;
  PostedCalls* calls_;
  base::WindowServices* shown_;  // read and written on the window's thread
  std::set<std::wstring> waiting_;
};

}  // namespace

struct DesktopCard::Shared {
  Shared(PostedCalls& calls, base::WindowServices& dialogs, CardExaminer::Parts parts, std::ostream& out,
         std::ostream& err)
      : messages(calls, dialogs), examiner(std::move(parts), messages, out, err) {}

  QueuedMessages messages;
  CardExaminer examiner;
  std::mutex mutex;  // guards what follows
  std::condition_variable changed;
  std::deque<std::function<void()>> work;
  bool stop = false;
  bool stopped = false;
  std::thread thread;  // the window's thread's to handle
};

DesktopCard::DesktopCard(base::WindowServices& dialogs, CardExaminer::Parts parts, std::ostream& out,
                         std::ostream& err, Patience patience)
    : patience_(patience), shared_(std::make_shared<Shared>(calls_, dialogs, std::move(parts), out, err)) {
  shared_->thread = std::thread([shared = shared_] { Loop(shared); });
}

DesktopCard::~DesktopCard() {
  (void)End();
}

void DesktopCard::Loop(const std::shared_ptr<Shared>& shared) {
  std::unique_lock lock(shared->mutex);
  while (true) {
    shared->changed.wait(lock, [&] { return shared->stop || !shared->work.empty(); });
    if (shared->stop) break;
    const std::function<void()> work = std::move(shared->work.front());
    shared->work.pop_front();
    lock.unlock();
    work();
    lock.lock();
  }
  shared->stopped = true;
  shared->changed.notify_all();
}

void DesktopCard::Post(std::function<void()> work) {
  {
    const std::scoped_lock lock(shared_->mutex);
    shared_->work.push_back(std::move(work));
  }
  shared_->changed.notify_all();
}

void DesktopCard::Open() {
  // The thread may outlive this object, so it reaches it only while the lock says that it is there.
  Post([this, shared = shared_.get()] {
    shared->examiner.Open();
    const std::scoped_lock lock(shared->mutex);
    if (!shared->stop) calls_.Post([this] { emit opened(); });
  });
}

engine::CardFilter& DesktopCard::filter() {
  return shared_->examiner.lent();
}

CardStatus DesktopCard::status() const {
  return shared_->examiner.status();
}

void DesktopCard::Check(std::function<void(bool usable)> answer) {
  auto told = std::make_shared<std::function<void(bool)>>(std::move(answer));
  const auto tellOnce = [told](bool usable) {
    if (const auto tell = std::exchange(*told, nullptr)) tell(usable);
  };
  QTimer::singleShot(patience_.answer, this, [tellOnce] { tellOnce(false); });
  Post([this, shared = shared_.get(), tellOnce] {
    const bool usable = shared->examiner.Agrees();
    const std::scoped_lock lock(shared->mutex);
    if (!shared->stop) calls_.Post([tellOnce, usable] { tellOnce(usable); });
  });
}

bool DesktopCard::End() {
  if (std::exchange(ended_, true)) return false;
  shared_->examiner.RequestAbort();
  std::unique_lock lock(shared_->mutex);
  shared_->stop = true;
  shared_->changed.notify_all();
  const bool back = shared_->changed.wait_for(lock, patience_.end, [this] { return shared_->stopped; });
  lock.unlock();
  if (back) {
    shared_->thread.join();
    shared_->examiner.Close();
  } else {
    shared_->thread.detach();
  }
  shared_->messages.Close();
  return !back;
}

}  // namespace mirellon::ui
