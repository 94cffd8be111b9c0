// What the view draws from.
#pragma once

#include <memory>
#include <vector>

#include "picture/pic_buf.h"
#include "ui/model/colour_transform.h"
#include "ui/model/orientation.h"

namespace mirellon::ui {

// Pictures are shared between the window and its jobs; once shared, nobody changes their samples.
using SharedPicture = std::shared_ptr<const picture::PicBuf>;

// How samples come to be those of the screen.
struct DisplayLook {
  std::shared_ptr<const ColourTransform> colours;  // for pictures of this kind; null: as they are
  Orientation orientation = Orientation::kUpright;
};

// An 8-bit, three-component copy of a picture, upright and in the screen's colours, and halves of it: level k
// has a 2^k-th of its sides (rounded down, at least 1). A view that shows less than half of the size draws
// from a half, which is faster and does not turn noise into a coarser one.
class DisplayPicture {
 public:
  static constexpr int kMostLevels = 8;

  // True = failed (out of memory); then there are fewer levels, perhaps none. Without a look, the samples of
  // level 0 are the source's, converted as ConvertBpcComp does it.
  [[nodiscard]] bool Build(const picture::SBxPicBuf& source, const DisplayLook& look = {});

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
[[nodiscard]] SharedDisplay MakeDisplay(const picture::SBxPicBuf& source, const DisplayLook& look = {});

}  // namespace mirellon::ui
