#include "engine/point_artefacts.h"

#include <utility>

#include <gtest/gtest.h>

#include "engine/plain_steps.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

constexpr std::pair<int, int> kVariants[] = {{1, 8}, {1, 16}, {2, 8}, {2, 16}};  // mode, bits

void ExpectPlainMedian(const PicBuf& source, int mode) {
  const PicBuf expected = test::PlainMedian(source, mode);
  test::OnEverySimdTarget([&] {
    PicBuf result = test::CopyOf(source);
    RemovePointArtefacts(result, source, mode);
    EXPECT_TRUE(test::SamePicture(result, expected)) << source->width << "x" << source->height;
  });
}

TEST(PointArtefacts, EqualsPlainMedianOnEverySize) {
  for (const auto& [mode, bits] : kVariants) {
    for (int height = 1; height <= 12; ++height) {
      for (int width = 1; width <= 12; ++width) {
        ExpectPlainMedian(test::RandomPicture(width, height, 1, bits, 31U * width + height), mode);
      }
    }
    // Extremes and ties.
    const unsigned top = bits == 8 ? 128 : 32768;
    const unsigned levels[] = {2 * top - 1, 2 * top - 2, top, top - 1, 1, 0};
    test::Random random(9);
    for (int distinct = 1; distinct <= 6; ++distinct) {
      const auto level = [&](int, int, int) { return levels[random.Below(distinct)]; };
      ExpectPlainMedian(test::MadeOf(37, 22, 1, bits, level), mode);
    }
    // 1024 columns are worked on at once.
    for (const auto& [width, height] :
         {std::pair{40, 33}, {131, 15}, {1024, 4}, {1025, 8}, {1027, 8}, {2051, 5}}) {
      ExpectPlainMedian(test::PhotoLikePicture(width, height, 1, bits, width), mode);
    }
  }
}

TEST(PointArtefacts, LeavesAloneWhatItShould) {
  const PicBuf marked = test::ConstantPicture(9, 8, 1, 8, 7);
  PicBuf destination = test::CopyOf(marked);
  for (const int mode : {0, 3, -1})
    RemovePointArtefacts(destination, test::RandomPicture(9, 8, 1, 8, 1), mode);
  RemovePointArtefacts(destination, test::RandomPicture(9, 8, 1, 16, 1), 2);
  RemovePointArtefacts(destination, test::RandomPicture(9, 9, 1, 8, 1), 2);
  RemovePointArtefacts(destination, PicBuf(), 2);
  EXPECT_TRUE(test::SamePicture(destination, marked));
}

}  // namespace
}  // namespace mirellon::engine
