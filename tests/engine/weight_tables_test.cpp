#include "engine/weight_tables.h"

#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "engine/reference_kernel.h"

namespace mirellon {
namespace {

using engine::WeightTableCache;
using engine::WeightTables;

// Every entry that exists, the ones that are not stored included.
TEST(WeightTables, EqualTheirFormula) {
  for (const double dynamicity : {-4.0, -0.6, 0.0, 1.0, 4.0}) {
    for (const double strength : {0.0, 0.5, 3.0, 10.0, 50.0, 500.0}) {
      const double variance = std::pow(strength, 3.5);
      const WeightTables tables(dynamicity, variance);
      for (const int v : {0, 1, 127, 254, 255}) {
        int wrong = 0;
        for (int s = 0; s < engine::kWeightEntries; ++s) {
          if (tables.Weight(v, s) != test::ReferenceWeight(v, s, dynamicity, variance)) ++wrong;
        }
        EXPECT_EQ(wrong, 0) << "dynamicity " << dynamicity << " strength " << strength << " intensity " << v;
      }
      const int last = tables.storedEntries() - 1;
      EXPECT_TRUE(tables.Table(0)[last] == 0 && tables.Table(255)[last] == 0);
    }
  }
}

TEST(WeightTables, OneTableServesAllIntensitiesWithoutDynamics) {
  EXPECT_EQ(WeightTables(0.0, 1000.0).tableStride(), 0U);
  const WeightTables bright(1.0, 1000.0);
  EXPECT_NE(bright.Weight(0, 100), bright.Weight(255, 100));
}

TEST(WeightTableCache, ReusesWithinATolerance) {
  WeightTableCache cache;
  const auto first = cache.Acquire(0.5, 100.0);
  EXPECT_EQ(cache.Acquire(0.5009, 100.0009), first);
  EXPECT_NE(cache.Acquire(0.5011, 100.0), first);
  EXPECT_NE(cache.Acquire(0.5, 100.0011), first);
}

TEST(WeightTableCache, OverwritesItsOldestSlot) {
  WeightTableCache cache;
  std::vector<std::shared_ptr<const WeightTables>> kept;
  for (int i = 0; i < 7; ++i) kept.push_back(cache.Acquire(0.0, 10.0 + i));
  for (int i = 0; i < 7; ++i) EXPECT_EQ(cache.Acquire(0.0, 10.0 + i), kept[static_cast<std::size_t>(i)]);
  const auto eighth = cache.Acquire(0.0, 100.0);
  EXPECT_EQ(cache.Acquire(0.0, 11.0), kept[1]) << "the second slot is still there";
  EXPECT_NE(cache.Acquire(0.0, 10.0), kept[0]) << "the first was overwritten and is built anew, in slot two";
  EXPECT_EQ(cache.Acquire(0.0, 100.0), eighth);
  EXPECT_NE(cache.Acquire(0.0, 11.0), kept[1]);
  EXPECT_EQ(kept[0]->Weight(0, 0), 10000U) << "tables handed out stay alive";
}

}  // namespace
}  // namespace mirellon
