#include "profiles/interpolate.h"

#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "profiles/profile_store.h"
#include "support/temporary_folder.h"

namespace mirellon::profiles {

TEST(InterpolateTest, StrengthsRunBetweenTheNeighbouringNoises) {
  const double rows[][5] = {
      {4.0, 20.0, 0.0, 8.0, 1.0}, {1.0, 10.0, 0.5, 2.0, 3.0}, {2.0, 14.0, -0.5, 4.0, 9.0}};
  std::vector<engine::DenoiseParameters> sets;
  for (const auto& row : rows) {
    engine::DenoiseParameters& set = sets.emplace_back();
    set.m_dImmerkaerY = row[0];
    set.m_dStrength = row[1];
    set.m_dDynamics = row[2];
    set.m_dImmerkaerUV = row[3];
    set.m_dStrengthChroma = row[4];
  }
  sets[0].m_iUseMedian = 2;
  const struct {
    double luminance;
    double chrominance;
    double strength;
    double dynamics;
    double chroma;
    int median;
  } cases[] = {{0.5, 99.0, 10.0, 0.5, 1.0, 0}, {1.5, 3.0, 12.0, 0.0, 6.0, 0},
               {2.0, 4.0, 14.0, -0.5, 9.0, 0}, {3.5, 5.0, 18.5, -0.125, 7.0, 2},
               {9.0, 0.5, 20.0, 0.0, 3.0, 2},  {3.0, 0.0, 17.0, -0.25, 5.0, 2}};  // the last one is grey
  for (const auto& c : cases) {
    const engine::DenoiseParameters set = InterpolateByNoise(sets, c.luminance, c.chrominance);
    EXPECT_DOUBLE_EQ(set.m_dStrength, c.strength);
    EXPECT_DOUBLE_EQ(set.m_dDynamics, c.dynamics);
    EXPECT_DOUBLE_EQ(set.m_dStrengthChroma, c.chroma);
    EXPECT_EQ(set.m_iUseMedian, c.median);
    EXPECT_EQ(set.m_dImmerkaerY, c.luminance);
    EXPECT_EQ(set.m_dImmerkaerUV, c.chrominance);
  }
}

TEST(ShippedProfilesTest, TheCatchAllGrowsStrongerWithItsNoise) {
  const std::filesystem::path shipped = std::filesystem::path(MIRELLON_RESOURCES) / kProfileFileName;
  const test::TemporaryFolder folder;
  NoiseProfileStore store({folder / kProfileFileName, shipped});
  ASSERT_FALSE(store.Load());
  EXPECT_EQ(store.source(), ProfileSource::kDefaultFile);
  EXPECT_EQ(store.cause(), "");
  ASSERT_FALSE(store.Save());
  EXPECT_EQ(test::ReadBytes(folder / kProfileFileName), test::ReadBytes(shipped));
  const std::vector<engine::DenoiseParameters>& sets = store.cameras().at(0).parameters;
  ASSERT_GT(sets.size(), 8U);
  for (std::size_t i = 1; i < sets.size(); ++i) {
    EXPECT_GT(sets[i].iso, sets[i - 1].iso);
    EXPECT_GT(sets[i].m_dImmerkaerY, sets[i - 1].m_dImmerkaerY) << sets[i].iso;
    EXPECT_GT(sets[i].m_dImmerkaerUV, sets[i - 1].m_dImmerkaerUV) << sets[i].iso;
    EXPECT_GE(sets[i].m_dStrength, sets[i - 1].m_dStrength) << sets[i].iso;
  }
}

}  // namespace mirellon::profiles
