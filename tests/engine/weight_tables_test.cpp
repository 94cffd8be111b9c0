#include "engine/weight_tables.h"

#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include "engine/reference_kernel.h"

namespace mirellon::engine {
namespace {

// Every entry that exists, the ones that are not stored included.
TEST(WeightTables, EqualTheirFormula) {
  for (const double dynamicity : {-4.0, -0.6, 0.0, 1.0, 4.0}) {
    for (const double strength : {0.0, 0.5, 3.0, 10.0, 50.0, 500.0}) {
      const double variance = std::pow(strength, 3.5);
      const WeightTables tables(dynamicity, variance);
      for (const int v : {0, 1, 127, 254, 255}) {
        int wrong = 0;
        for (int s = 0; s < kWeightEntries; ++s) {
          if (tables.Weight(v, s) != test::ReferenceWeight(v, s, dynamicity, variance)) ++wrong;
        }
        EXPECT_EQ(wrong, 0) << "dynamicity " << dynamicity << " strength " << strength << " intensity " << v;
        EXPECT_EQ(tables.Table(v)[tables.storedEntries() - 1], 0);
      }
      EXPECT_EQ(tables.tableStride() == 0, dynamicity == 0.0) << "one table serves all without dynamics";
    }
  }
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
  const auto acquire = [&cache](int variance) { return cache.Acquire(0.0, variance); };
  std::shared_ptr<const WeightTables> kept[8];
  for (int i = 0; i < 8; ++i) kept[i] = acquire(10 + i);  // the eighth takes the first slot
  for (int i = 1; i < 8; ++i) EXPECT_EQ(acquire(10 + i), kept[i]);
  EXPECT_NE(acquire(10), kept[0]) << "built anew, in the second slot";
  for (int i = 2; i < 8; ++i) EXPECT_EQ(acquire(10 + i), kept[i]);
  EXPECT_NE(acquire(11), kept[1]);
  EXPECT_EQ(kept[0]->Weight(0, 0), 10000U) << "tables handed out stay alive";
}

}  // namespace
}  // namespace mirellon::engine
