#include "picture/pic_buf_api.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "support/test_pictures.h"

namespace mirellon::picture {
namespace {

using test::CopyOf;
using test::RandomPicture;
using test::SamePicture;
using test::Sample;

constexpr int kLargest = std::numeric_limits<int>::max();
constexpr int kLeast = -kLargest - 1;
constexpr std::pair<int, int> kKinds[] = {{1, 8}, {1, 16}, {3, 8}, {3, 16}};  // components, bits

TEST(PicBufApi, StorageFollowsTheGeometry) {
  const int cases[][6] = {{1, 1, 1, 8, 1, 1},     {7, 3, 3, 8, 21, 63},
                          {7, 3, 3, 16, 42, 126}, {5, 4, 1, 32, 20, 80},
                          {5, 4, 1, 64, 40, 160}, {20000, 20000, 1, 8, 20000, 400000000}};
  for (const auto& [width, height, components, bits, rowStride, byteSize] : cases) {
    PicBuf picture(1, 1, 1, 8);
    CBxPicBufAPI::ReinitHeap(picture, PicBuf(width, height, components, bits));
    CBxPicBufAPI::ReinitHeap(picture, picture);  // like itself
    EXPECT_EQ(picture->rowStride, rowStride);
    ASSERT_EQ(picture->byteSize, byteSize);
    picture->samples[byteSize - 1] = 1;
    CBxPicBufAPI::DoneHeap(picture);
    EXPECT_TRUE(picture.empty() && picture->byteSize == 0 && picture->width == 0);
    CBxPicBufAPI::DoneHeap(picture);  // once more does no harm
  }
}

TEST(PicBufApi, ImpossibleGeometryLeavesTheRecordEmpty) {
  const int cases[][4] = {{40000, 40000, 3, 16}, {46341, 46341, 1, 8}, {kLargest, kLargest, 3, 64},
                          {kLargest, 1, 1, 16},  {0, 5, 1, 8},         {5, 0, 1, 8},
                          {-3, 5, 1, 8},         {5, 5, 0, 8},         {5, 5, 1, 12},
                          {5, 5, 1, 0},          {5, 5, kLargest, 8},  {5, -5, -1, 8}};
  for (const auto& c : cases) {
    PicBuf picture(4, 4, 1, 8);
    CBxPicBufAPI::ReinitHeap(picture, c[0], c[1], c[2], c[3]);
    EXPECT_TRUE(picture.empty() && picture->width == 0) << c[0] << "x" << c[1] << "x" << c[2] << "@" << c[3];
  }
}

TEST(PicBufApi, CopyIsExactForEveryKind) {
  for (const int bits : {8, 16, 32, 64}) {
    PicBuf source = RandomPicture(9, 6, 3, bits, 1);
    CBxPicBufAPI::Copy(source, source);
    PicBuf destinations[] = {PicBuf(), PicBuf(9, 6, 3, bits), PicBuf(9, 5, 3, bits), PicBuf(9, 6, 1, 8)};
    for (PicBuf& destination : destinations) {
      CBxPicBufAPI::Copy(destination, source);
      ASSERT_EQ(std::tuple(destination->byteSize, destination->height), std::tuple(source->byteSize, 6));
      EXPECT_EQ(
          std::memcmp(destination->samples, source->samples, static_cast<std::size_t>(source->byteSize)), 0);
    }
    CBxPicBufAPI::Copy(source, PicBuf());
    EXPECT_TRUE(source.empty());
  }
  unsigned char padded[] = {1, 2, 3, 99, 4, 5, 6, 99};
  EXPECT_EQ(Sample(CopyOf(SBxPicBuf{padded, 8, 4, 3, 2, 1, 8}), 0, 1), 4U);
}

TEST(PicBufApi, CopyRectIsClippedToBoth) {
  struct Case {
    CBxPoint<int> to, from;
    CBxSize<int> size;
  };
  const Case cases[] = {{{0, 0}, {0, 0}, {8, 6}},
                        {{3, 2}, {0, 0}, {8, 6}},
                        {{0, 0}, {3, 2}, {8, 6}},
                        {{-2, -1}, {0, 0}, {5, 5}},
                        {{-4, 3}, {-2, -6}, {7, 20}},
                        {{2, 2}, {1, 1}, {3, -1}},
                        {{20, 0}, {0, 20}, {3, 3}},
                        {{1, 1}, {2, 2}, {kLargest, kLargest}},
                        {{kLeast, 0}, {kLargest, 0}, {kLargest, 3}},
                        {{kLargest, kLargest}, {kLeast, kLeast}, {kLargest, kLargest}}};
  for (const auto& [components, bits] : kKinds) {
    PicBuf source = RandomPicture(8, 6, components, bits, 5);
    const PicBuf before = RandomPicture(10, 7, components, bits, 6);
    for (const Case& c : cases) {
      const auto sampleAt = [&](int x, int y, int k) {
        // In 64 bits: where this pixel comes from, if the rectangle reaches it.
        const std::int64_t dx = std::int64_t{x} - c.to.x, fromX = c.from.x + dx;
        const std::int64_t dy = std::int64_t{y} - c.to.y, fromY = c.from.y + dy;
        const bool covered = dx >= 0 && dx < c.size.width && dy >= 0 && dy < c.size.height;
        const bool exists = fromX >= 0 && fromX < 8 && fromY >= 0 && fromY < 6;
        if (!covered || !exists) return Sample(before, x, y, k);
        return Sample(source, static_cast<int>(fromX), static_cast<int>(fromY), k);
      };
      PicBuf copied = CopyOf(before);
      CBxPicBufAPI::CopyRect(copied, source, c.to, c.from, c.size);
      EXPECT_TRUE(SamePicture(copied, test::MadeOf(10, 7, components, bits, sampleAt))) << c.to.x;
      // Within one picture, as if from a copy of it.
      PicBuf moved = CopyOf(source);
      copied = CopyOf(source);
      CBxPicBufAPI::CopyRect(moved, moved, c.to, c.from, c.size);
      CBxPicBufAPI::CopyRect(copied, source, c.to, c.from, c.size);
      EXPECT_TRUE(SamePicture(moved, copied)) << c.to.x;
    }
    PicBuf other = RandomPicture(10, 7, 4 - components, bits, 7);
    CBxPicBufAPI::CopyRect(other, source, {0, 0}, {0, 0}, {8, 6});
    EXPECT_TRUE(SamePicture(other, RandomPicture(10, 7, 4 - components, bits, 7)));
  }
}

TEST(PicBufApi, ComponentsComeOutAndGoBack) {
  for (const int bits : {8, 16}) {
    PicBuf source = RandomPicture(11, 5, 3, bits, 8);
    PicBuf rebuilt(11, 5, 3, bits);
    PicBuf plane(11, 5, 1, bits);
    for (unsigned c = 0; c < 3; ++c) {
      ASSERT_EQ(CBxPicBufAPI::ExtractComponent(plane, c, source), 1);
      EXPECT_TRUE(SamePicture(plane, test::ComponentOf(source, static_cast<int>(c))));
      ASSERT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, c, plane), 1);
    }
    EXPECT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, 3, plane), 0);
    EXPECT_EQ(CBxPicBufAPI::ExtractComponent(plane, 3, rebuilt), 0);
    EXPECT_EQ(CBxPicBufAPI::ExtractComponent(rebuilt, 0, source), 0);
    EXPECT_EQ(CBxPicBufAPI::ConvertYUVtoRGB(plane, plane), 0);
    PicBuf misfits[] = {PicBuf(11, 4, 1, bits), PicBuf(11, 5, 1, 24 - bits), PicBuf(11, 4, 3, bits),
                        PicBuf()};
    for (PicBuf& misfit : misfits) {
      EXPECT_EQ(CBxPicBufAPI::InsertComponent(rebuilt, 0, misfit), 0);
      EXPECT_EQ(CBxPicBufAPI::ExtractComponent(misfit, 0, rebuilt), 0);
      EXPECT_EQ(CBxPicBufAPI::ConvertRGBtoYUV(misfit, rebuilt), 0);
    }
    EXPECT_TRUE(SamePicture(rebuilt, source));
  }
}

TEST(PicBufApi, ConvertsComponentsThenDepth) {
  for (const auto& [components, bits] : kKinds) {
    for (const auto& [toComponents, toBits] : kKinds) {
      PicBuf source = RandomPicture(13, 4, components, bits, 4);
      PicBuf converted = CopyOf(source);
      ASSERT_EQ(CBxPicBufAPI::ConvertBpcComp(converted, toBits, toComponents), 1);
      if (components > toComponents) CBxPicBufAPI::ConvertRGBtoYUV(source, source);
      const auto sampleAt = [&, from = bits, to = toBits, replicated = components == 1](int x, int y, int c) {
        const unsigned value = Sample(source, x, y, replicated ? 0 : c);
        return from > to ? value >> 8U : from < to ? value * 257U : value;
      };
      EXPECT_TRUE(SamePicture(converted, test::MadeOf(13, 4, toComponents, toBits, sampleAt)));
    }
  }
  PicBuf picture = RandomPicture(3, 3, 3, 8, 1);
  for (const auto& [bits, components] : {std::pair{12U, 1U}, {8U, 2U}, {32U, 1U}, {0U, 0U}}) {
    EXPECT_EQ(CBxPicBufAPI::ConvertBpcComp(picture, bits, components), 0);
  }
  EXPECT_TRUE(SamePicture(picture, RandomPicture(3, 3, 3, 8, 1)));
  PicBuf sums(3, 3, 1, 32);
  EXPECT_EQ(CBxPicBufAPI::ConvertBpcComp(sums, 8, 1), 0);
}

TEST(PicBufApi, SetConstFillsTheClippedRectangle) {
  const CBxRect<int> rectangles[] = {{0, 0, 9, 7}, {2, 1, 5, 4},  {-5, -5, 3, 100}, {5, 5, 5, 6},
                                     {6, 2, 3, 5}, {8, 0, 12, 7}, {0, -9, 9, -1}};
  for (const auto& [components, bits] : kKinds) {
    for (const CBxRect<int>& r : rectangles) {
      const PicBuf before = RandomPicture(9, 7, components, bits, 3);
      PicBuf picture = CopyOf(before);
      CBxPicBufAPI::SetConst(picture, r, 190);
      const auto sampleAt = [&](int x, int y, int c) {
        const bool covered = x >= r.left && x < r.right && y >= r.top && y < r.bottom;
        return covered ? 190U : Sample(before, x, y, c);
      };
      EXPECT_TRUE(SamePicture(picture, test::MadeOf(9, 7, components, bits, sampleAt))) << r.left;
    }
  }
}

}  // namespace
}  // namespace mirellon::picture
