#include "cli/terminal_progress.h"

#include <algorithm>
#include <utility>

namespace mirellon::cli {

namespace {

constexpr auto kLeastInterval = std::chrono::milliseconds(100);
constexpr int kLongestBar = 50;  // characters
constexpr int kShortestBar = 5;  // a terminal too narrow for it gets the number alone

std::string ThreeDigits(int percent) {
  std::string text = std::to_string(percent);
  return std::string(3 - std::min<std::size_t>(3, text.size()), ' ') + text + " %";
}

}  // namespace

TerminalProgress::TerminalProgress(std::ostream& stream, std::string label, Columns columns, Clock clock)
    : stream_(stream), label_(std::move(label)), columns_(std::move(columns)), clock_(std::move(clock)) {}

void TerminalProgress::SetRange(int low, int high) {
  low_ = low;
  high_ = high;
  Draw();
}

void TerminalProgress::SetPosition(int position) {
  position_ = position;
  Draw();
}

void TerminalProgress::SetStep(int /*step*/) {}

void TerminalProgress::Advance(int n) {
  position_ += n;
  Draw();
}

int TerminalProgress::Percent() const {
  const long long range = static_cast<long long>(high_) - low_;
  if (range <= 0) return 0;
  return static_cast<int>(std::clamp((position_ - low_) * 100 / range, 0LL, 100LL));
}

std::string TerminalProgress::Line(int percent) const {
  // The last column stays free: a line that fills it wraps on some terminals.
  const int width = std::max(0, columns_() - 1);
  std::string line = label_ + " " + ThreeDigits(percent);
  const int room = width - static_cast<int>(line.size()) - 3;  // blank and brackets
  if (room >= kShortestBar) {
    const int bar = std::min(room, kLongestBar);
    const int filled = bar * percent / 100;
    line += " [";
    line.append(static_cast<std::size_t>(filled), '#');
    line.append(static_cast<std::size_t>(bar - filled), '.');
    line += ']';
  }
  return line.substr(0, static_cast<std::size_t>(width));
}

void TerminalProgress::Draw() {
  const int percent = Percent();
  if (finished_ || percent == drawnPercent_) return;
  const auto now = clock_();
  if (drawnPercent_ >= 0 && now - drawnAt_ < kLeastInterval) return;
  const std::string line = Line(percent);
  // What a longer line left behind is covered by blanks.
  const std::size_t covered = std::max(line.size(), drawnLength_);
  std::string text(1, '\r');
  text += line;
  text.resize(1 + covered, ' ');
  stream_ << text << std::flush;
  drawnPercent_ = percent;
  drawnLength_ = line.size();
  drawnAt_ = now;
}

void TerminalProgress::Finish() {
  if (!finished_ && drawnLength_ > 0) {
    std::string text(drawnLength_ + 2, ' ');
    text.front() = text.back() = '\r';
    stream_ << text << std::flush;
  }
  finished_ = true;
}

}  // namespace mirellon::cli
