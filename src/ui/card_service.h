// The graphics card, as the window knows it.
#pragma once

#include <functional>

#include "ui/model/card_examiner.h"

namespace mirellon::ui {

// Used on the window's thread, which never waits for a driver.
class CardService {
 public:
  CardService() = default;
  CardService(const CardService&) = delete;
  CardService& operator=(const CardService&) = delete;
  virtual ~CardService() = default;

  [[nodiscard]] virtual CardStatus status() const = 0;
  // Asks whether the card may be switched on, which is found out anew each time. The answer comes from the
  // event loop, within seconds; a card that does not answer may not.
  virtual void Check(std::function<void(bool usable)> answer) = 0;
};

}  // namespace mirellon::ui
