#include "ui/model/display_picture.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "engine/engine_context.h"
#include "engine/parallel_for.h"

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

// In bands shared among the processors: a large photograph's colours take longer than its decoding otherwise.
PicBuf InScreenColours(const SBxPicBuf& source, const ColourTransform& colours) {
  constexpr int kBand = 128;  // rows
  PicBuf copy(source.width, source.height, kComponents, 8);
  if (copy.empty()) return copy;
  std::atomic<bool> failed = false;
  engine::ParallelFor(engine::CountProcessors(), (source.height + kBand - 1) / kBand,
                      [&](int band, std::uint32_t /*thread*/) {
                        const int first = band * kBand;
                        try {
                          colours.Convert(source, copy, first, std::min(kBand, source.height - first));
                        } catch (const std::bad_alloc&) {
                          failed = true;
                        }
                      });
  return failed ? PicBuf() : std::move(copy);
}

// As stored. Empty without memory.
PicBuf ShallowCopy(const SBxPicBuf& source, const DisplayLook& look) {
  if (source.samples == nullptr) return {};
  if (look.colours != nullptr) return InScreenColours(source, *look.colours);
  PicBuf copy;
  CBxPicBufAPI::Copy(copy, source);
  if (copy.empty() || CBxPicBufAPI::ConvertBpcComp(copy, 8, kComponents) == 0) return {};
  return copy;
}

SharedDisplay Displayed(const SBxPicBuf& source, const DisplayLook& look) {
  auto display = std::make_shared<DisplayPicture>();
  if (display->Build(source, look)) return nullptr;
  return display;
}

}  // namespace

bool DisplayPicture::Build(const SBxPicBuf& source, const DisplayLook& look) {
  levels_.clear();
  try {
    levels_.reserve(kMostLevels);
  } catch (const std::bad_alloc&) {
    return true;
  }
  PicBuf copy = ShallowCopy(source, look);
  if (!copy.empty() && look.orientation != Orientation::kUpright) copy = Upright(look.orientation, copy);
  if (copy.empty()) return true;
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

SharedDisplay MakeDisplay(const SBxPicBuf& source, const DisplayLook& look) {
  try {
    return Displayed(source, look);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace mirellon::ui
