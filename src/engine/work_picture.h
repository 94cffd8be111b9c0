// The picture that the similarity filter works on.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/similarity_band.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// The border for a plane of even sides, searched `halfWindow` pixels far: 38 for planes of 72 pixels and
// more, less for small ones, but never so little that a displaced 6 x 6 patch of the plane leaves the work
// picture.
[[nodiscard]] int BorderOf(int width, int height, int halfWindow);

// Owns the planes of one source picture grown by its mirrored border.
class WorkPicture {
 public:
  // source: one component, 8 or 16 bits, even sides. guide: its 8-bit copy (the same samples at 8 bits). True
  // = failed (out of memory).
  [[nodiscard]] bool Build(const picture::SBxPicBuf& source, const picture::SBxPicBuf& guide, int halfWindow);
  // Valid while this object lives.
  [[nodiscard]] const WorkPlanes& planes() const { return planes_; }

 private:
  std::vector<std::uint8_t> high_;
  std::vector<std::uint8_t> low_;
  WorkPlanes planes_;
};

}  // namespace mirellon::engine
