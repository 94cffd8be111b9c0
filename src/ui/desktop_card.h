// The graphics card of the desktop program.
#pragma once

#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <ostream>

#include "ui/card_service.h"
#include "ui/posted_calls.h"

namespace mirellon::ui {

// Has the card examined on a thread of its own, on which alone a driver may be slow. Belongs to the window's
// thread. What a driver has to say, on whatever thread, is shown from the event loop.
class DesktopCard : public QObject, public CardService {
  Q_OBJECT

 public:
  // How long a driver is waited for.
  struct Patience {
    std::chrono::milliseconds answer{5000};
    std::chrono::milliseconds end{3000};
  };

  // `dialogs` and the streams outlive it.
  DesktopCard(base::WindowServices& dialogs, CardExaminer::Parts parts, std::ostream& out, std::ostream& err,
              Patience patience);
  ~DesktopCard() override;
  DesktopCard(const DesktopCard&) = delete;
  DesktopCard& operator=(const DesktopCard&) = delete;

  // Begins the examination; opened() follows.
  void Open();
  // For the engine's context. Lives until End().
  [[nodiscard]] engine::CardFilter& filter();

  [[nodiscard]] CardStatus status() const override;
  void Check(std::function<void(bool usable)> answer) override;

  // Gives the card back, once nobody uses filter() any more. True = failed: its driver does not come back,
  // and the process can only end without it. Later calls do nothing.
  [[nodiscard]] bool End();

 signals:
  void opened();

 private:
  struct Shared;
  static void Loop(const std::shared_ptr<Shared>& shared);
  void Post(std::function<void()> work);

  Patience patience_;
  PostedCalls calls_;
  std::shared_ptr<Shared> shared_;  // with the thread, which may outlive this object
  bool ended_ = false;
};

}  // namespace mirellon::ui
