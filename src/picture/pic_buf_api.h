// The picture record that every part of the program exchanges, and the operations on it.
//
// Samples are interleaved pixel by pixel, rows top-down: component c of pixel (x, y) lies at
//   samples + y * rowStride + (x * components + c) * (bitsPerComponent / 8).
// Colour pictures hold component 0 = blue, 1 = green, 2 = red (or 0 = Y, 1 = U, 2 = V after conversion).
#pragma once

#include <cstdint>

namespace mirellon::picture {

class CBxPicMap;

struct SBxPicBuf {
  unsigned char* samples;         // owned by the record; null when empty
  std::int32_t byteSize;          // size of the storage in bytes
  std::int32_t rowStride;         // bytes from one row to the next
  std::int32_t width;             // pixels per row
  std::int32_t height;            // rows
  std::int32_t components;        // samples per pixel: 1 or 3
  std::int32_t bitsPerComponent;  // 8 or 16 in pictures; 32 unsigned and 64 (double) in accumulators
};

template <typename T>
struct CBxPoint {
  T x;
  T y;
};

template <typename T>
struct CBxSize {
  T width;
  T height;
};

// right and bottom lie one past the last column and row.
template <typename T>
struct CBxRect {
  T left;
  T top;
  T right;
  T bottom;
};

// Code that holds a record uses the owner PicBuf (pic_buf.h); these operations work on records of anybody.
// No operation throws. A char result is 1 when done, 0 when the arguments do not fit together (nothing is
// written then).
class CBxPicBufAPI {
 public:
  // An empty record: no storage, zero geometry. Called once, before any other use.
  static void Init(SBxPicBuf& picture);

  // Replaces any earlier storage by one for that geometry, one contiguous block without gaps between rows;
  // contents undefined. When the geometry is impossible (a side below 1, unknown bits, a size that does not
  // fit byteSize) or memory is refused, the record is left empty: callers that meet user data check samples.
  static void ReinitHeap(SBxPicBuf& picture, int width, int height, int components, int bitsPerComponent);
  static void ReinitHeap(SBxPicBuf& destination, const SBxPicBuf& like);

  // Frees the storage and empties the record; ReinitHeap brings it back to life.
  static void DoneHeap(SBxPicBuf& picture);

  // Makes destination an exact copy of source, geometry and samples. Copying onto itself does nothing.
  static void Copy(SBxPicBuf& destination, const SBxPicBuf& source);

  // Copies a rectangle between two existing pictures of equal components and bits. The rectangle is clipped
  // to both pictures; pictures of unequal kind are left alone. Both may be the same picture.
  static void CopyRect(SBxPicBuf& destination, SBxPicBuf& source, const CBxPoint<int>& destinationOrigin,
                       const CBxPoint<int>& sourceOrigin, const CBxSize<int>& size);

  // Component `index` of source into the one-component destination of the same width, height and bits.
  static char ExtractComponent(SBxPicBuf& destination, unsigned index, SBxPicBuf& source);
  // The one-component source into component `index` of destination.
  static char InsertComponent(SBxPicBuf& destination, unsigned index, SBxPicBuf& source);

  // Converts in place, components first, then depth (8 or 16, 1 or 3). 3 to 1: the Y of ConvertRGBtoYUV at
  // the picture's own depth; 1 to 3: replicated; 16 to 8 bits: v >> 8; 8 to 16 bits: v * 257.
  static char ConvertBpcComp(SBxPicBuf& picture, unsigned bitsPerComponent, unsigned components);

  // Both pictures of one shape, 3 components, 8 or 16 bits; they may be the same record. Formulas: see
  // colour_convert.h.
  static char ConvertRGBtoYUV(SBxPicBuf& destination, SBxPicBuf& source);
  static char ConvertYUVtoRGB(SBxPicBuf& destination, SBxPicBuf& source);

  // Every sample of the rectangle (clipped to the picture) becomes `value`.
  static void SetConst(SBxPicBuf& picture, const CBxRect<int>& rectangle, unsigned char value);

  // Resample source into destination through the mapping: two pictures of one kind (8 or 16 bits, 1 or 3
  // components; others are left alone). A destination pixel whose centre falls outside the source keeps its
  // value. Nearest pixel, bilinear, and bicubic after Catmull and Rom (a = -0.5); the latter two work in
  // single precision, across and then down, repeat the outermost pixels past the edges, round to the nearest
  // and clamp.
  static void TransformConstantFast(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map);
  static void TransformBilinearFast(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map);
  static void TransformBicubicFast(SBxPicBuf& destination, const SBxPicBuf& source, const CBxPicMap& map);
};

}  // namespace mirellon::picture
