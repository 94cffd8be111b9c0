// From a photograph's colours to those of the screen.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "picture/pic_buf_api.h"

namespace mirellon::ui {

// What the view's user and the desktop have set.
struct ViewColours {
  bool managed = true;  // false: samples are shown as they are
  std::string screen;   // the screen's ICC profile; empty: sRGB

  friend bool operator==(const ViewColours& a, const ViewColours& b) {
    return a.managed == b.managed && a.screen == b.screen;
  }
};

// What became of a photograph's own profile.
enum class ProfileUse {
  kNone,  // there is none, or colours are not managed: samples are shown as they are
  kSame,  // it says what the screen's says, within one step of 255: likewise
  kConverted,
  kUnusable,  // damaged, or of another kind of picture: likewise
};

// Relative colorimetric, by Little CMS. Shared between threads.
class ColourTransform {
 public:
  using Handle = std::unique_ptr<void, void (*)(void*)>;  // of Little CMS

  // For each component of a 16-bit colour picture: what its samples are to the transform, which is one of 8
  // bits then.
  using Steps = std::array<std::vector<std::uint8_t>, 3>;

  explicit ColourTransform(Handle transform, Steps steps = {})
      : transform_(std::move(transform)), steps_(std::move(steps)) {}

  // Rows of a picture of the kind that it was made for become those of one of the same size, 8 bits and three
  // components. May throw std::bad_alloc.
  void Convert(const picture::SBxPicBuf& source, picture::SBxPicBuf& target, int firstRow, int rows) const;

 private:
  Handle transform_;
  Steps steps_;  // empty: the transform takes the picture's own samples
};

struct ColourChoice {
  ProfileUse use = ProfileUse::kNone;
  std::shared_ptr<const ColourTransform> transform;  // null unless kConverted
};

// For pictures of that many components and bits with that embedded profile. A screen's profile that cannot be
// used counts as sRGB. May throw std::bad_alloc.
[[nodiscard]] ColourChoice MakeColourTransform(const std::string& profile, int components, int bits,
                                               const ViewColours& colours);

}  // namespace mirellon::ui
