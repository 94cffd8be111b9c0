#include "engine/point_artefacts.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

PicBuf PlainMedian(const SBxPicBuf& source, int mode) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  const int reach = mode == 1 ? 1 : 3;
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      const bool full = y >= 1 && y <= source.height - 2 && x >= 1 && x <= source.width - 2;
      if (mode == 1 && !full) continue;
      std::vector<unsigned> values;
      for (int r = std::max(0, y - reach); r <= std::min(source.height - 1, y + reach); ++r) {
        for (int c = std::max(0, x - reach); c <= std::min(source.width - 1, x + reach); ++c) {
          values.push_back(test::Sample(source, c, r));
        }
      }
      std::sort(values.begin(), values.end());
      test::SetSample(result, x, y, 0, values[values.size() / 2]);
    }
  }
  return result;
}

PicBuf Filtered(const SBxPicBuf& source, int mode) {
  PicBuf result;
  CBxPicBufAPI::Copy(result, source);
  RemovePointArtefacts(result, source, mode);
  return result;
}

void ExpectPlainMedian(const SBxPicBuf& source, int mode) {
  EXPECT_TRUE(test::SamePicture(Filtered(source, mode), PlainMedian(source, mode)))
      << source.width << "x" << source.height << " mode " << mode;
}

class PointArtefacts : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(PointArtefacts, EqualsPlainMedianOnEverySize) {
  const auto [mode, bits] = GetParam();
  for (int height = 1; height <= 12; ++height) {
    for (int width = 1; width <= 12; ++width) {
      ExpectPlainMedian(test::RandomPicture(width, height, 1, bits, 31U * width + height), mode);
    }
  }
  // 1024 columns are worked on at once.
  for (const auto& [width, height] :
       {std::tuple{40, 33}, {1, 40}, {1023, 9}, {1024, 4}, {1025, 8}, {1027, 8}, {2051, 5}}) {
    ExpectPlainMedian(test::PhotoLikePicture(width, height, 1, bits, width), mode);
  }
}

TEST_P(PointArtefacts, OrdersExtremesAndTies) {
  const auto [mode, bits] = GetParam();
  const unsigned largest = bits == 8 ? 255 : 65535;
  const unsigned top = (largest + 1) / 2;
  const unsigned levels[] = {0, 1, top - 1, top, largest - 1, largest};
  test::Random random(9);
  for (int distinct = 1; distinct <= 6; ++distinct) {
    PicBuf plane(37, 22, 1, bits);
    for (int y = 0; y < 22; ++y) {
      for (int x = 0; x < 37; ++x) test::SetSample(plane, x, y, 0, levels[6 - 1 - random.Below(distinct)]);
    }
    ExpectPlainMedian(plane, mode);
  }
}

TEST_P(PointArtefacts, EverySimdTargetAgrees) {
  const auto [mode, bits] = GetParam();
  const PicBuf plane = test::RandomPicture(131, 15, 1, bits, 77);
  const PicBuf expected = PlainMedian(plane, mode);
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    EXPECT_TRUE(test::SamePicture(Filtered(plane, mode), expected)) << hwy::TargetName(target);
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

INSTANTIATE_TEST_SUITE_P(Modes, PointArtefacts,
                         ::testing::Combine(::testing::Values(1, 2), ::testing::Values(8, 16)));

TEST(PointArtefactsCall, LeavesAloneWhatItShould) {
  const PicBuf source = test::RandomPicture(9, 8, 1, 8, 1);
  const PicBuf marked = test::ConstantPicture(9, 8, 1, 8, 7);
  PicBuf destination;
  CBxPicBufAPI::Copy(destination, marked);
  for (const int mode : {0, 3, -1}) RemovePointArtefacts(destination, source, mode);
  RemovePointArtefacts(destination, test::RandomPicture(9, 8, 1, 16, 1), 2);
  RemovePointArtefacts(destination, test::RandomPicture(9, 9, 1, 8, 1), 2);
  RemovePointArtefacts(destination, PicBuf(), 2);
  EXPECT_TRUE(test::SamePicture(destination, marked));

  // The common mode leaves the frame to whatever the destination holds.
  RemovePointArtefacts(destination, source, 1);
  for (int x = 0; x < 9; ++x) {
    EXPECT_EQ(test::Sample(destination, x, 0), 7U);
    EXPECT_EQ(test::Sample(destination, x, 7), 7U);
  }
}

}  // namespace
}  // namespace mirellon::engine
