#include "engine/mirror_border.h"

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

template <typename T>
void MirrorBorder(SBxPicBuf& plane, int border) {
  const int innerWidth = plane.width - 2 * border;
  const int innerHeight = plane.height - 2 * border;
  for (int y = border; y < border + innerHeight; ++y) {
    T* row = Row<T>(plane, y);
    for (int x = 0; x < border; ++x) row[x] = row[border + Reflected(x - border, innerWidth)];
    for (int x = border + innerWidth; x < plane.width; ++x)
      row[x] = row[border + Reflected(x - border, innerWidth)];
  }
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
