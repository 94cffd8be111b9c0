#include "picture/pic_buf_api.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

using test::ConstantPicture;
using test::RandomPicture;
using test::SamePicture;
using test::Sample;

PicBuf CopyOf(const SBxPicBuf& picture) {
  PicBuf copy;
  CBxPicBufAPI::Copy(copy, picture);
  return copy;
}

bool Empty(const SBxPicBuf& p) {
  return p.samples == nullptr && p.byteSize == 0 && p.rowStride == 0 && p.width == 0 && p.height == 0 &&
         p.components == 0 && p.bitsPerComponent == 0;
}

TEST(PicBufApi, StorageFollowsTheGeometry) {
  struct Case {
    int width, height, components, bits, rowStride, byteSize;
  };
  for (const Case& c : {Case{1, 1, 1, 8, 1, 1},
                        {7, 3, 1, 8, 7, 21},
                        {7, 3, 3, 8, 21, 63},
                        {7, 3, 3, 16, 42, 126},
                        {5, 4, 1, 32, 20, 80},
                        {5, 4, 1, 64, 40, 160},
                        {20000, 20000, 1, 8, 20000, 400000000}}) {
    PicBuf picture(c.width, c.height, c.components, c.bits);
    ASSERT_FALSE(picture.empty());
    EXPECT_EQ(picture->rowStride, c.rowStride);
    EXPECT_EQ(picture->byteSize, c.byteSize);
    EXPECT_EQ(picture->width, c.width);
    EXPECT_EQ(picture->height, c.height);
    EXPECT_EQ(picture->components, c.components);
    EXPECT_EQ(picture->bitsPerComponent, c.bits);
    if (c.byteSize < 1000) std::memset(picture->samples, 0xFF, static_cast<std::size_t>(c.byteSize));
    PicBuf alike;
    CBxPicBufAPI::ReinitHeap(alike, picture);
    EXPECT_EQ(alike->byteSize, c.byteSize);
    CBxPicBufAPI::ReinitHeap(alike, alike);  // like itself
    EXPECT_EQ(alike->byteSize, c.byteSize);
    CBxPicBufAPI::DoneHeap(alike);
    EXPECT_TRUE(Empty(alike));
    CBxPicBufAPI::DoneHeap(alike);  // once more does no harm
    CBxPicBufAPI::ReinitHeap(alike, 2, 2, 1, 8);
    EXPECT_EQ(alike->byteSize, 4);
  }
  PicBuf doubles(3, 2, 1, 64);
  Row<double>(doubles.record(), 1)[2] = 0.5;
  EXPECT_EQ(Row<double>(doubles.record(), 0)[5], 0.5);
}

TEST(PicBufApi, ImpossibleGeometryLeavesTheRecordEmpty) {
  constexpr int kLargest = std::numeric_limits<int>::max();
  const int cases[][4] = {{40000, 40000, 3, 16}, {46341, 46341, 1, 8}, {kLargest, kLargest, 3, 64},
                          {kLargest, 1, 1, 16},  {0, 5, 1, 8},         {5, 0, 1, 8},
                          {-3, 5, 1, 8},         {5, 5, 0, 8},         {5, 5, 1, 12},
                          {5, 5, 1, 0},          {5, 5, kLargest, 8},  {5, -5, -1, 8}};
  for (const auto& c : cases) {
    PicBuf picture(4, 4, 1, 8);
    CBxPicBufAPI::ReinitHeap(picture, c[0], c[1], c[2], c[3]);
    EXPECT_TRUE(Empty(picture)) << c[0] << "x" << c[1] << "x" << c[2] << "@" << c[3];
  }
}

TEST(PicBufApi, CopyIsExactForEveryKind) {
  for (const int bits : {8, 16, 32, 64}) {
    const PicBuf source = RandomPicture(9, 6, 3, bits, static_cast<unsigned>(bits));
    PicBuf fresh;
    PicBuf reused(9, 6, 3, bits);
    PicBuf other(2, 9, 1, 8);
    for (PicBuf* destination : {&fresh, &reused, &other}) {
      CBxPicBufAPI::Copy(*destination, source);
      ASSERT_EQ((*destination)->byteSize, source->byteSize);
      EXPECT_EQ((*destination)->bitsPerComponent, bits);
      EXPECT_EQ(
          std::memcmp((*destination)->samples, source->samples, static_cast<std::size_t>(source->byteSize)),
          0);
    }
    const unsigned char* before = fresh->samples;
    CBxPicBufAPI::Copy(fresh, fresh);
    EXPECT_EQ(fresh->samples, before);
  }
  PicBuf emptied(3, 3, 1, 8);
  CBxPicBufAPI::Copy(emptied, PicBuf());
  EXPECT_TRUE(Empty(emptied));
}

TEST(PicBufApi, CopyLeavesRowPaddingOut) {
  unsigned char padded[] = {1, 2, 3, 99, 4, 5, 6, 99};
  const SBxPicBuf source{padded, 8, 4, 3, 2, 1, 8};
  const PicBuf copy = CopyOf(source);
  EXPECT_EQ(copy->rowStride, 3);
  EXPECT_EQ(Sample(copy, 0, 1), 4U);
}

TEST(PicBufApi, CopyRectIsClippedToBoth) {
  struct Case {
    CBxPoint<int> to, from;
    CBxSize<int> size;
  };
  constexpr int kLargest = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  const Case cases[] = {{{0, 0}, {0, 0}, {8, 6}},
                        {{3, 2}, {0, 0}, {8, 6}},
                        {{0, 0}, {3, 2}, {8, 6}},
                        {{-2, -1}, {0, 0}, {5, 5}},
                        {{0, 0}, {-2, -1}, {5, 5}},
                        {{-4, 3}, {-2, -6}, {7, 20}},
                        {{2, 2}, {1, 1}, {0, 3}},
                        {{2, 2}, {1, 1}, {3, -1}},
                        {{20, 0}, {0, 0}, {3, 3}},
                        {{0, 0}, {0, 20}, {3, 3}},
                        {{1, 1}, {2, 2}, {kLargest, kLargest}},
                        {{kLeast, 0}, {kLargest, 0}, {kLargest, 3}},
                        {{kLargest, kLargest}, {kLeast, kLeast}, {kLargest, kLargest}}};
  for (const int bits : {8, 16}) {
    for (const int components : {1, 3}) {
      PicBuf source = RandomPicture(8, 6, components, bits, 5);
      const PicBuf before = RandomPicture(10, 7, components, bits, 6);
      for (const Case& c : cases) {
        PicBuf expected = CopyOf(before);
        for (int y = 0; y < 7; ++y) {
          for (int x = 0; x < 10; ++x) {
            // In 64 bits: where this pixel of the destination comes from, if the rectangle reaches it.
            const std::int64_t dx = std::int64_t{x} - c.to.x;
            const std::int64_t dy = std::int64_t{y} - c.to.y;
            const std::int64_t fromX = c.from.x + dx;
            const std::int64_t fromY = c.from.y + dy;
            const bool covered = dx >= 0 && dx < c.size.width && dy >= 0 && dy < c.size.height;
            if (!covered || fromX < 0 || fromX >= 8 || fromY < 0 || fromY >= 6) continue;
            for (int k = 0; k < components; ++k) {
              test::SetSample(expected, x, y, k,
                              Sample(source, static_cast<int>(fromX), static_cast<int>(fromY), k));
            }
          }
        }
        PicBuf destination = CopyOf(before);
        CBxPicBufAPI::CopyRect(destination, source, c.to, c.from, c.size);
        EXPECT_TRUE(SamePicture(destination, expected))
            << c.to.x << "," << c.to.y << " from " << c.from.x << "," << c.from.y;
      }
      // Into a larger picture of zeros and back.
      PicBuf padded = ConstantPicture(9, 7, components, bits, 0);
      CBxPicBufAPI::CopyRect(padded, source, {0, 0}, {0, 0}, {8, 6});
      EXPECT_EQ(Sample(padded, 8, 3), 0U);
      EXPECT_EQ(Sample(padded, 3, 6), 0U);
      PicBuf back(8, 6, components, bits);
      CBxPicBufAPI::CopyRect(back, padded, {0, 0}, {0, 0}, {8, 6});
      EXPECT_TRUE(SamePicture(back, source));
      // Unequal kinds.
      PicBuf other = RandomPicture(10, 7, 4 - components, bits, 7);
      const PicBuf otherBefore = CopyOf(other);
      CBxPicBufAPI::CopyRect(other, source, {0, 0}, {0, 0}, {8, 6});
      EXPECT_TRUE(SamePicture(other, otherBefore));
    }
  }
}

TEST(PicBufApi, CopyRectMovesWithinOnePicture) {
  for (const int shift : {-2, 2}) {
    PicBuf picture = RandomPicture(9, 9, 1, 8, 2);
    const PicBuf before = CopyOf(picture);
    CBxPicBufAPI::CopyRect(picture, picture, {3, 3 + shift}, {3, 3}, {3, 3});
    for (int y = 0; y < 3; ++y) {
      for (int x = 3; x < 6; ++x)
        EXPECT_EQ(Sample(picture, x, 3 + shift + y), Sample(before, x, 3 + y)) << shift;
    }
  }
}

TEST(PicBufApi, ComponentsComeOutAndGoBack) {
  for (const int bits : {8, 16}) {
    PicBuf source = RandomPicture(11, 5, 3, bits, 8);
    PicBuf rebuilt = ConstantPicture(11, 5, 3, bits, 1);
    for (unsigned c = 0; c < 3; ++c) {
      PicBuf plane(source.record(), 1);
      ASSERT_EQ(CBxPicBufAPI::ExtractComponent(plane, c, source), 1);
      EXPECT_EQ(Sample(plane, 10, 4), Sample(source, 10, 4, static_cast<int>(c)));
      ASSERT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, c, plane), 1);
    }
    EXPECT_TRUE(SamePicture(rebuilt, source));

    const PicBuf before = CopyOf(rebuilt);
    PicBuf plane = RandomPicture(11, 5, 1, bits, 9);
    PicBuf shorter = RandomPicture(11, 4, 1, bits, 9);
    PicBuf deeper = RandomPicture(11, 5, 1, 24 - bits, 9);
    PicBuf colour = RandomPicture(11, 5, 3, bits, 9);
    PicBuf empty;
    EXPECT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, 3, plane), 0);
    EXPECT_EQ(CBxPicBufAPI::ExtractComponent(plane, 3, rebuilt), 0);
    for (SBxPicBuf* misfit : {&shorter.record(), &deeper.record(), &colour.record(), &empty.record()}) {
      EXPECT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, 0, *misfit), 0);
      EXPECT_EQ(CBxPicBufAPI::ExtractComponent(*misfit, 0, rebuilt), 0);
    }
    EXPECT_TRUE(SamePicture(rebuilt, before));
  }
}

TEST(PicBufApi, ConvertsComponentsThenDepth) {
  const int width = 13;
  const int height = 4;
  for (const int fromBits : {8, 16}) {
    for (const int fromComponents : {1, 3}) {
      for (const int toBits : {8, 16}) {
        for (const int toComponents : {1, 3}) {
          const PicBuf source = RandomPicture(width, height, fromComponents, fromBits, 4);
          PicBuf converted = CopyOf(source);
          ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(converted, static_cast<unsigned>(toBits),
                                                 static_cast<unsigned>(toComponents)),
                    1);
          PicBuf expected(width, height, toComponents, toBits);
          for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
              for (int c = 0; c < toComponents; ++c) {
                unsigned value = Sample(source, x, y, fromComponents == 3 ? c : 0);
                if (fromComponents == 3 && toComponents == 1) {
                  const std::uint64_t sum = 19595ULL * Sample(source, x, y, 2) +
                                            38470ULL * Sample(source, x, y, 1) +
                                            7471ULL * Sample(source, x, y, 0) + 32768ULL;
                  value = static_cast<unsigned>(sum >> 16U);
                }
                if (fromBits > toBits) value >>= 8U;
                if (fromBits < toBits) value *= 257U;
                test::SetSample(expected, x, y, c, value);
              }
            }
          }
          EXPECT_TRUE(SamePicture(converted, expected));
        }
      }
    }
  }
  PicBuf picture = RandomPicture(3, 3, 3, 8, 1);
  const PicBuf before = CopyOf(picture);
  for (const auto& [bits, components] : {std::pair{12U, 1U}, {8U, 2U}, {32U, 1U}, {0U, 0U}}) {
    EXPECT_EQ(CBxPicBufAPI::ConvertBpcComp(picture, bits, components), 0);
  }
  EXPECT_TRUE(SamePicture(picture, before));
  PicBuf sums(3, 3, 1, 32);
  EXPECT_EQ(CBxPicBufAPI::ConvertBpcComp(sums, 8, 1), 0);
  PicBuf empty;
  EXPECT_EQ(CBxPicBufAPI::ConvertBpcComp(empty, 8, 1), 0);
}

TEST(PicBufApi, ConvertsColourRowByRow) {
  for (const int bits : {8, 16}) {
    PicBuf source = RandomPicture(17, 6, 3, bits, 21);
    PicBuf yuv(source.record(), 3);
    ASSERT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(yuv, source), 1);
    PicBuf grey = CopyOf(source);
    ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(grey, static_cast<unsigned>(bits), 1), 1);
    PicBuf luminance(source.record(), 1);
    ASSERT_EQ(CBxPicBufAPI::ExtractComponent(luminance, 0, yuv), 1);
    EXPECT_TRUE(SamePicture(luminance, grey));

    PicBuf inPlace = CopyOf(source);
    ASSERT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(inPlace, inPlace), 1);
    EXPECT_TRUE(SamePicture(inPlace, yuv));
    PicBuf back(source.record(), 3);
    ASSERT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(back, yuv), 1);
    ASSERT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(inPlace, inPlace), 1);
    EXPECT_TRUE(SamePicture(inPlace, back));

    PicBuf smaller(16, 6, 3, bits);
    PicBuf empty;
    EXPECT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(smaller, source), 0);
    EXPECT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(empty, source), 0);
    EXPECT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(luminance, grey), 0);
    EXPECT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(luminance, yuv), 0);
  }
}

TEST(PicBufApi, SetConstFillsTheClippedRectangle) {
  for (const int bits : {8, 16}) {
    for (const int components : {1, 3}) {
      for (const CBxRect<int>& r : {CBxRect<int>{0, 0, 9, 7},
                                    {2, 1, 5, 4},
                                    {-5, -5, 3, 100},
                                    {8, 6, 9, 7},
                                    {5, 5, 5, 6},
                                    {6, 2, 3, 5},
                                    {9, 0, 12, 7},
                                    {0, -9, 9, -1}}) {
        const PicBuf before = RandomPicture(9, 7, components, bits, 3);
        PicBuf picture = CopyOf(before);
        CBxPicBufAPI::SetConst(picture, r, 190);
        for (int y = 0; y < 7; ++y) {
          for (int x = 0; x < 9; ++x) {
            const bool covered = x >= r.left && x < r.right && y >= r.top && y < r.bottom;
            for (int c = 0; c < components; ++c) {
              ASSERT_EQ(Sample(picture, x, y, c), covered ? 190U : Sample(before, x, y, c)) << x << "," << y;
            }
          }
        }
      }
    }
  }
  PicBuf empty;
  CBxPicBufAPI::SetConst(empty, {0, 0, 5, 5}, 1);
  EXPECT_TRUE(Empty(empty));
}

}  // namespace
}  // namespace mirellon::picture
