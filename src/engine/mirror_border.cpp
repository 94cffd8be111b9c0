#include "engine/mirror_border.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using picture::Row;
using picture::SBxPicBuf;

// The index of 0 to size - 1 at which a mirror on either edge shows position i.
int Reflected(int i, int size) {
  if (size == 1) return 0;
  const int period = 2 * (size - 1);
  const int phase = ((i % period) + period) % period;
  return phase < size ? phase : period - phase;
}

// Both ends of a row whose inner part is `size` samples from `inner` on.
template <typename T>
void MirrorRow(T* inner, int size, int border) {
  if (border < size) {
    T* const last = inner + size - 1;
    for (std::ptrdiff_t i = 1; i <= border; ++i) {
      inner[-i] = inner[i];
      last[i] = last[-i];
    }
    return;
  }
  for (int x = -border; x < 0; ++x) inner[x] = inner[Reflected(x, size)];
  for (int x = size; x < size + border; ++x) inner[x] = inner[Reflected(x, size)];
}

template <typename T>
void MirrorBorder(SBxPicBuf& plane, int border) {
  const int innerWidth = plane.width - 2 * border;
  const int innerHeight = plane.height - 2 * border;
  for (int y = border; y < border + innerHeight; ++y)
    MirrorRow(Row<T>(plane, y) + border, innerWidth, border);
  const auto copyRow = [&](int y) {
    const int from = border + Reflected(y - border, innerHeight);
    std::memcpy(Row<T>(plane, y), Row<T>(plane, from), static_cast<std::size_t>(plane.width) * sizeof(T));
  };
  for (int y = 0; y < border; ++y) copyRow(y);
  for (int y = border + innerHeight; y < plane.height; ++y) copyRow(y);
}

}  // namespace

void MirrorBorder8(SBxPicBuf& plane, int border) {
  MirrorBorder<std::uint8_t>(plane, border);
}
void MirrorBorder16(SBxPicBuf& plane, int border) {
  MirrorBorder<std::uint16_t>(plane, border);
}

}  // namespace mirellon::engine
