#include "engine/fusion.h"

#include <chrono>
#include <system_error>
#include <thread>

namespace mirellon::engine {

namespace {

using Finish = std::function<int(int, TileTaker)>;

std::int64_t Milliseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

void RunCard(FusionQueue& queue, const Finish& finish) {
  while (const std::optional<int> tile = queue.TakeForCard()) {
    if (finish(*tile, TileTaker::kCard) != 0) return queue.EndCard(tile);
  }
  queue.EndCard(std::nullopt);
}

}  // namespace

bool ShareTiles(int count, base::ProgressSink* progress, const Finish& finish) {
  FusionQueue queue(count, progress, Milliseconds);
  std::jthread card;
  try {
    card = std::jthread([&queue, &finish] { RunCard(queue, finish); });
  } catch (const std::system_error&) {
    queue.EndCard(std::nullopt);
  }
  while (const std::optional<int> tile = queue.TakeForProcessor()) {
    if (finish(*tile, TileTaker::kProcessor) != 0) {
      queue.Stop();
      return false;
    }
  }
  return true;
}

}  // namespace mirellon::engine
