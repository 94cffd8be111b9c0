// What the view draws from.
#pragma once

#include <memory>
#include <vector>

#include "picture/pic_buf.h"

namespace mirellon::ui {

// Pictures are shared between the window and its jobs; once shared, nobody changes their samples.
using SharedPicture = std::shared_ptr<const picture::PicBuf>;

// An 8-bit, three-component copy of a picture, and halves of it: level k has a 2^k-th of its sides (rounded
// down, at least 1). A view that shows less than half of the size draws from a half, which is faster and does
// not turn noise into a coarser one.
class DisplayPicture {
 public:
  static constexpr int kMostLevels = 8;

  // True = failed (out of memory); then there are fewer levels, perhaps none.
  [[nodiscard]] bool Build(const picture::SBxPicBuf& source);

  [[nodiscard]] bool empty() const { return levels_.empty(); }
  [[nodiscard]] int levels() const { return static_cast<int>(levels_.size()); }
  [[nodiscard]] const picture::SBxPicBuf& level(int index) const {
    return levels_[static_cast<std::size_t>(index)].record();
  }
  // The coarsest level that still has at least one sample for a pixel at that zoom.
  [[nodiscard]] int LevelFor(double zoom) const;

 private:
  std::vector<picture::PicBuf> levels_;
};

using SharedDisplay = std::shared_ptr<const DisplayPicture>;

// Null when memory was refused.
[[nodiscard]] SharedDisplay MakeDisplay(const picture::SBxPicBuf& source);

}  // namespace mirellon::ui
