#include "engine/mirror_border.h"

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "engine/work_picture.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using picture::PicBuf;

// The stated rule for planes large enough to be mirrored once.
int MirroredOnce(int i, int size, int border) {
  if (i < size / 2) return border + std::abs(i - border);
  return size - border - 1 - std::abs(size - i - border - 1);
}

template <typename Mirror>
void ExpectMirrored(int width, int height, int border, int bits, Mirror mirror) {
  PicBuf work = test::RandomPicture(width + 2 * border, height + 2 * border, 1, bits, 9);
  PicBuf before;
  picture::CBxPicBufAPI::Copy(before, work);
  mirror(work, border);
  for (int y = 0; y < work->height; ++y) {
    for (int x = 0; x < work->width; ++x) {
      ASSERT_EQ(test::Sample(work, x, y), test::Sample(before, MirroredOnce(x, work->width, border),
                                                       MirroredOnce(y, work->height, border)))
          << width << "x" << height << " at " << x << ", " << y;
    }
  }
}

TEST(MirrorBorder, ReflectsWithoutRepeatingTheEdge) {
  ExpectMirrored(20, 30, 12, 8, engine::MirrorBorder8);
  ExpectMirrored(80, 72, 38, 8, engine::MirrorBorder8);
  ExpectMirrored(21, 13, 11, 16, engine::MirrorBorder16);
}

TEST(MirrorBorder, ReflectsAgainWhereAPlaneIsSmallerThanItsBorder) {
  constexpr int kBorder = 5;
  PicBuf work = test::ConstantPicture(3 + 2 * kBorder, 1 + 2 * kBorder, 1, 8, 99);
  for (int x = 0; x < 3; ++x) test::SetSample(work, kBorder + x, kBorder, 0, static_cast<unsigned>(x));
  engine::MirrorBorder8(work, kBorder);
  const std::vector<unsigned> expected = {1, 0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2, 1};
  for (int y = 0; y < work->height; ++y) {
    for (int x = 0; x < work->width; ++x) {
      EXPECT_EQ(test::Sample(work, x, y), expected[static_cast<std::size_t>(x)]) << x << ", " << y;
    }
  }
}

TEST(MirrorBorder, BorderFollowsTheShorterSide) {
  EXPECT_EQ(engine::BorderOf(1000, 800, 10), 38);
  EXPECT_EQ(engine::BorderOf(72, 200, 3), 38);
  EXPECT_EQ(engine::BorderOf(70, 200, 3), 37);
  EXPECT_EQ(engine::BorderOf(20, 500, 10), 12);
  EXPECT_EQ(engine::BorderOf(2, 2, 3), 5) << "never less than the search needs";
  EXPECT_EQ(engine::BorderOf(2, 2, 10), 12);
}

}  // namespace
}  // namespace mirellon
