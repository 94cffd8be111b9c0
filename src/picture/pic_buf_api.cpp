#include "picture/pic_buf_api.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "base/large_memory.h"
#include "picture/colour_convert.h"
#include "picture/pic_buf.h"

namespace mirellon::picture {

namespace {

// Bytes of one row and of the whole picture, computed in 64 bits; whole = 0 when the geometry is not
// possible.
struct StorageSize {
  std::int64_t row = 0;
  std::int64_t whole = 0;
};

StorageSize SizeOf(int width, int height, int components, int bitsPerComponent) {
  const bool bitsKnown =
      bitsPerComponent == 8 || bitsPerComponent == 16 || bitsPerComponent == 32 || bitsPerComponent == 64;
  if (width < 1 || height < 1 || components < 1 || components > 4 || !bitsKnown) return {};
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  const std::int64_t row = static_cast<std::int64_t>(width) * components * (bitsPerComponent / 8);
  if (row > kLargest || row * height > kLargest) return {};
  return {row, row * height};
}

bool SameKind(const SBxPicBuf& a, const SBxPicBuf& b) {
  return a.components == b.components && a.bitsPerComponent == b.bitsPerComponent;
}

bool SameSize(const SBxPicBuf& a, const SBxPicBuf& b) {
  return a.width == b.width && a.height == b.height;
}

bool IsPhotograph(const SBxPicBuf& picture) {
  return picture.samples != nullptr && (picture.components == 1 || picture.components == 3) &&
         (picture.bitsPerComponent == 8 || picture.bitsPerComponent == 16);
}

// Calls f with a value of the sample type that the picture holds.
template <typename F>
void WithSampleType(int bitsPerComponent, F f) {
  switch (bitsPerComponent) {
    case 8:
      return f(std::uint8_t{});
    case 16:
      return f(std::uint16_t{});
    case 32:
      return f(std::uint32_t{});
    case 64:
      return f(double{});
    default:
      return;
  }
}

// Copies `count` samples that lie `fromStep` and `toStep` samples apart.
template <typename T>
void CopySpaced(const T* from, int fromStep, T* to, int toStep, int count) {
  for (std::ptrdiff_t x = 0; x < count; ++x) to[x * toStep] = from[x * fromStep];
}

// Moves samples between component `index` of `interleaved` and the one-component `plane`.
template <bool kExtract>
char MoveComponent(SBxPicBuf& plane, unsigned index, SBxPicBuf& interleaved) {
  const bool fits = plane.samples != nullptr && interleaved.samples != nullptr && plane.components == 1 &&
                    SameSize(plane, interleaved) && plane.bitsPerComponent == interleaved.bitsPerComponent &&
                    index < static_cast<unsigned>(interleaved.components);
  if (!fits) return 0;
  WithSampleType(plane.bitsPerComponent, [&](auto sample) {
    using T = decltype(sample);
    for (int y = 0; y < plane.height; ++y) {
      T* planeRow = Row<T>(plane, y);
      T* interleavedRow = Row<T>(interleaved, y) + index;
      if constexpr (kExtract) {
        CopySpaced(interleavedRow, interleaved.components, planeRow, 1, plane.width);
      } else {
        CopySpaced(planeRow, 1, interleavedRow, interleaved.components, plane.width);
      }
    }
  });
  return 1;
}

// Replaces `picture` by one of another kind, its rows made by convert(fromRow, toRow, pixels).
template <typename From, typename To, typename F>
char ReplaceRows(SBxPicBuf& picture, int components, int bitsPerComponent, F convert) {
  PicBuf converted(picture.width, picture.height, components, bitsPerComponent);
  if (converted.empty()) return 0;
  for (int y = 0; y < picture.height; ++y) convert(Row<From>(picture, y), Row<To>(converted.record(), y));
  std::swap(picture, converted.record());
  return 1;
}

template <typename T>
char ConvertComponents(SBxPicBuf& picture, int components) {
  const int pixels = picture.width;
  if (components == 1) {
    return ReplaceRows<T, T>(picture, 1, picture.bitsPerComponent,
                             [pixels](const T* from, T* to) { ConvertRowRGBtoY(from, to, pixels); });
  }
  return ReplaceRows<T, T>(picture, 3, picture.bitsPerComponent, [pixels](const T* from, T* to) {
    for (int x = 0; x < pixels; ++x) std::fill_n(to + static_cast<std::ptrdiff_t>(x) * 3, 3, from[x]);
  });
}

char ConvertDepth(SBxPicBuf& picture, int bitsPerComponent) {
  const std::ptrdiff_t samples = static_cast<std::ptrdiff_t>(picture.width) * picture.components;
  if (bitsPerComponent == 8) {
    return ReplaceRows<std::uint16_t, std::uint8_t>(picture, picture.components, 8,
                                                    [samples](const std::uint16_t* from, std::uint8_t* to) {
                                                      for (std::ptrdiff_t i = 0; i < samples; ++i)
                                                        to[i] = static_cast<std::uint8_t>(from[i] >> 8);
                                                    });
  }
  return ReplaceRows<std::uint8_t, std::uint16_t>(picture, picture.components, 16,
                                                  [samples](const std::uint8_t* from, std::uint16_t* to) {
                                                    for (std::ptrdiff_t i = 0; i < samples; ++i)
                                                      to[i] = static_cast<std::uint16_t>(from[i] * 257);
                                                  });
}

template <bool kToYuv>
char ConvertColour(SBxPicBuf& destination, SBxPicBuf& source) {
  const bool fits = IsPhotograph(source) && destination.samples != nullptr && source.components == 3 &&
                    SameKind(destination, source) && SameSize(destination, source);
  if (!fits) return 0;
  WithSampleType(source.bitsPerComponent, [&](auto sample) {
    using T = decltype(sample);
    if constexpr (sizeof(T) <= 2) {
      for (int y = 0; y < source.height; ++y) {
        if constexpr (kToYuv) {
          ConvertRowRGBtoYUV(Row<T>(source, y), Row<T>(destination, y), source.width);
        } else {
          ConvertRowYUVtoRGB(Row<T>(source, y), Row<T>(destination, y), source.width);
        }
      }
    }
  });
  return 1;
}

// Moves one axis of a rectangle to copy inside both pictures.
void ClipSpan(int& destinationStart, int& sourceStart, int& length, int destinationLength, int sourceLength) {
  std::int64_t from = sourceStart;
  std::int64_t to = destinationStart;
  std::int64_t count = length;
  const std::int64_t before = std::max<std::int64_t>({0, -from, -to});
  from += before;
  to += before;
  count = std::min({count - before, sourceLength - from, destinationLength - to});
  length = static_cast<int>(std::max<std::int64_t>(count, 0));
  if (length == 0) return;
  sourceStart = static_cast<int>(from);
  destinationStart = static_cast<int>(to);
}

}  // namespace

void CBxPicBufAPI::Init(SBxPicBuf& picture) {
  picture = SBxPicBuf{};
}

void CBxPicBufAPI::ReinitHeap(SBxPicBuf& picture, int width, int height, int components,
                              int bitsPerComponent) {
  DoneHeap(picture);
  const StorageSize size = SizeOf(width, height, components, bitsPerComponent);
  if (size.whole == 0) return;
  auto* samples = static_cast<unsigned char*>(base::AllocateLarge(static_cast<std::size_t>(size.whole)));
  if (samples == nullptr) return;
  picture = {samples,
             static_cast<std::int32_t>(size.whole),
             static_cast<std::int32_t>(size.row),
             width,
             height,
             components,
             bitsPerComponent};
}

void CBxPicBufAPI::ReinitHeap(SBxPicBuf& destination, const SBxPicBuf& like) {
  const SBxPicBuf geometry = like;  // `like` may be the destination itself
  ReinitHeap(destination, geometry.width, geometry.height, geometry.components, geometry.bitsPerComponent);
}

void CBxPicBufAPI::DoneHeap(SBxPicBuf& picture) {
  std::free(picture.samples);  // NOLINT(cppcoreguidelines-no-malloc): pairs with ReinitHeap
  Init(picture);
}

void CBxPicBufAPI::Copy(SBxPicBuf& destination, const SBxPicBuf& source) {
  if (&destination == &source) return;
  const bool reusable =
      destination.samples != nullptr && SameKind(destination, source) && SameSize(destination, source);
  if (!reusable) ReinitHeap(destination, source);
  if (destination.samples == nullptr || source.samples == nullptr) return;
  const auto rowBytes = static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.components) *
                        static_cast<std::size_t>(source.bitsPerComponent / 8);
  for (int y = 0; y < source.height; ++y) {
    std::memcpy(Row<unsigned char>(destination, y), Row<unsigned char>(source, y), rowBytes);
  }
}

void CBxPicBufAPI::CopyRect(SBxPicBuf& destination, SBxPicBuf& source, const CBxPoint<int>& destinationOrigin,
                            const CBxPoint<int>& sourceOrigin, const CBxSize<int>& size) {
  if (destination.samples == nullptr || source.samples == nullptr || !SameKind(destination, source)) return;
  CBxPoint<int> to = destinationOrigin;
  CBxPoint<int> from = sourceOrigin;
  CBxSize<int> extent = size;
  ClipSpan(to.x, from.x, extent.width, destination.width, source.width);
  ClipSpan(to.y, from.y, extent.height, destination.height, source.height);
  if (extent.width == 0) return;
  const std::size_t pixelBytes =
      static_cast<std::size_t>(source.components) * static_cast<std::size_t>(source.bitsPerComponent / 8);
  // Downwards within one picture the last row goes first, before it is overwritten.
  const bool lastFirst = destination.samples == source.samples && to.y > from.y;
  for (int i = 0; i < extent.height; ++i) {
    const int y = lastFirst ? extent.height - 1 - i : i;
    std::memmove(Row<unsigned char>(destination, to.y + y) + static_cast<std::size_t>(to.x) * pixelBytes,
                 Row<unsigned char>(source, from.y + y) + static_cast<std::size_t>(from.x) * pixelBytes,
                 static_cast<std::size_t>(extent.width) * pixelBytes);
  }
}

char CBxPicBufAPI::ExtractComponent(SBxPicBuf& destination, unsigned index, SBxPicBuf& source) {
  return MoveComponent<true>(destination, index, source);
}

char CBxPicBufAPI::InsertComponent(SBxPicBuf& destination, unsigned index, SBxPicBuf& source) {
  return MoveComponent<false>(source, index, destination);
}

char CBxPicBufAPI::ConvertBpcComp(SBxPicBuf& picture, unsigned bitsPerComponent, unsigned components) {
  const bool known =
      (bitsPerComponent == 8 || bitsPerComponent == 16) && (components == 1 || components == 3);
  if (!IsPhotograph(picture) || !known) return 0;
  if (picture.components != static_cast<int>(components)) {
    const char done = picture.bitsPerComponent == 8
                          ? ConvertComponents<std::uint8_t>(picture, static_cast<int>(components))
                          : ConvertComponents<std::uint16_t>(picture, static_cast<int>(components));
    if (done == 0) return 0;
  }
  if (picture.bitsPerComponent == static_cast<int>(bitsPerComponent)) return 1;
  return ConvertDepth(picture, static_cast<int>(bitsPerComponent));
}

char CBxPicBufAPI::ConvertRGBtoYUV(SBxPicBuf& destination, SBxPicBuf& source) {
  return ConvertColour<true>(destination, source);
}

char CBxPicBufAPI::ConvertYUVtoRGB(SBxPicBuf& destination, SBxPicBuf& source) {
  return ConvertColour<false>(destination, source);
}

void CBxPicBufAPI::SetConst(SBxPicBuf& picture, const CBxRect<int>& rectangle, unsigned char value) {
  if (picture.samples == nullptr) return;
  const int left = std::max(rectangle.left, 0);
  const int right = std::min(rectangle.right, picture.width);
  const int bottom = std::min(rectangle.bottom, picture.height);
  if (left >= right) return;
  const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(left) * picture.components;
  const std::ptrdiff_t count = static_cast<std::ptrdiff_t>(right - left) * picture.components;
  WithSampleType(picture.bitsPerComponent, [&](auto sample) {
    using T = decltype(sample);
    for (int y = std::max(rectangle.top, 0); y < bottom; ++y) {
      std::fill_n(Row<T>(picture, y) + first, count, static_cast<T>(value));
    }
  });
}

}  // namespace mirellon::picture
