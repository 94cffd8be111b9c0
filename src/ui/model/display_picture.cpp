#include "ui/model/display_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace mirellon::ui {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::Row;
using picture::SBxPicBuf;

constexpr int kComponents = 3;
constexpr std::ptrdiff_t kPair = std::ptrdiff_t{2} * kComponents;

// Means of 2 x 2 pixels; an odd last row or column is left out unless it is the only one.
PicBuf Half(const SBxPicBuf& source) {
  PicBuf half(std::max(source.width / 2, 1), std::max(source.height / 2, 1), kComponents, 8);
  if (half.empty()) return half;
  const int right = source.width > 1 ? kComponents : 0;
  for (int y = 0; y < half->height; ++y) {
    const auto* above = Row<std::uint8_t>(source, 2 * y);
    const auto* below = Row<std::uint8_t>(source, std::min(2 * y + 1, source.height - 1));
    auto* to = Row<std::uint8_t>(half.record(), y);
    for (int x = 0; x < half->width; ++x, above += kPair, below += kPair) {
      for (int c = 0; c < kComponents; ++c) {
        *to++ =
            static_cast<std::uint8_t>((above[c] + above[c + right] + below[c] + below[c + right] + 2) / 4);
      }
    }
  }
  return half;
}

SharedDisplay Displayed(const SBxPicBuf& source) {
  auto display = std::make_shared<DisplayPicture>();
  if (display->Build(source)) return nullptr;
  return display;
}

}  // namespace

bool DisplayPicture::Build(const SBxPicBuf& source) {
  levels_.clear();
  try {
    levels_.reserve(kMostLevels);
  } catch (const std::bad_alloc&) {
    return true;
  }
  PicBuf copy;
  CBxPicBufAPI::Copy(copy, source);
  if (copy.empty() || CBxPicBufAPI::ConvertBpcComp(copy, 8, kComponents) == 0) return true;
  levels_.push_back(std::move(copy));
  while (levels_.size() < kMostLevels &&
         std::max(level(levels() - 1).width, level(levels() - 1).height) > 1) {
    PicBuf half = Half(level(levels() - 1));
    if (half.empty()) return true;
    levels_.push_back(std::move(half));
  }
  return false;
}

int DisplayPicture::LevelFor(double zoom) const {
  int index = 0;
  for (double scale = zoom * 2.0; scale <= 1.0 && index + 1 < levels(); scale *= 2.0) ++index;
  return index;
}

SharedDisplay MakeDisplay(const SBxPicBuf& source) {
  try {
    return Displayed(source);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace mirellon::ui
