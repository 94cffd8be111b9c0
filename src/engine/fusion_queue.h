// The tiles that processor and card share, and who takes the next one.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "base/progress_sink.h"

namespace mirellon::engine {

enum class TileTaker : std::uint8_t { kProcessor, kCard };

// What is known when the processor asks for a tile. Tiles taken include the one in work; milliseconds are
// those of the finished ones.
struct FusionTimes {
  int cardTiles = 0;
  std::int64_t cardMs = 0;
  int processorTiles = 0;
  std::int64_t processorMs = 0;
  int remaining = 0;           // tiles that nobody has taken
  std::int64_t cardStart = 0;  // when the card began the tile that it has in work
  std::int64_t now = 0;
};

// Whether the card alone would be done before the processor had finished one more tile: with g and c the mean
// times of a tile on card and processor and r the tiles remaining, the card gets through them and the one in
// work by F1 = cardStart + (r + 1) g, and without the one that the processor takes by F = cardStart + r g.
// The run would end at the later of F and now + c; beyond F1 the processor had better leave the rest alone.
// False until both have finished two tiles.
[[nodiscard]] bool CardAloneIsFaster(const FusionTimes& times);

// Hands out tiles 0 to count - 1 in order. Safe from two threads, one a taker.
class FusionQueue {
 public:
  using Clock = std::function<std::int64_t()>;  // milliseconds

  // The progress moves on by one for every tile taken, on the processor's thread. Null: nobody looks.
  FusionQueue(int count, base::ProgressSink* progress, Clock clock);

  // Each call means that the taker's last tile is finished. Nothing: there is no more for it. The processor
  // waits while what is left is the card's, as some of it may come back; it takes over when the card ends.
  [[nodiscard]] std::optional<int> TakeForProcessor();
  [[nodiscard]] std::optional<int> TakeForCard();

  // The card takes no more; the tile that it did not get done, if any, goes to the processor.
  void EndCard(std::optional<int> unfinished);
  // The card is given no more.
  void Stop();

 private:
  struct Side {
    int taken = 0;
    std::int64_t finishedMs = 0;
    std::int64_t start = 0;  // of the tile in work
    bool working = false;
  };

  [[nodiscard]] int Remaining() const { return count_ - next_; }
  void FinishTile(Side& side);
  int TakeNext(Side& side);
  [[nodiscard]] bool LeaveTheRest();
  void ShowProgress();

  const int count_;
  base::ProgressSink* progress_;
  Clock clock_;
  std::mutex mutex_;  // guards everything below
  std::condition_variable changed_;
  int next_ = 0;
  int shown_ = 0;
  Side card_;
  Side processor_;
  bool cardEnded_ = false;
  bool stopped_ = false;
  bool leftToCard_ = false;
  std::optional<int> returned_;
};

}  // namespace mirellon::engine
