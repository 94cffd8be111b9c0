#include "gpu/programs.h"

#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "gpu/open_card.h"

namespace mirellon::gpu {
namespace {

std::uint64_t Fnv1a(const char* text) {
  std::uint64_t hash = 0xcbf29ce484222325ULL;
  for (; *text != '\0'; ++text) hash = (hash ^ static_cast<unsigned char>(*text)) * 0x100000001b3ULL;
  return hash;
}

// The texts are part of the filter's definition, and drivers see every byte.
TEST(Programs, TextsAreUnchangedAndInTheOrderOfCompilation) {
  const struct {
    const char* name;
    std::size_t slot;
    std::size_t bytes;
    std::uint64_t hash;
  } expected[] = {
      {"DIFF_1", 1, 154, 0xd4f0f50acadb52bcULL},
      {"DIFF_3", 9, 160, 0x97dfc65f21cabdebULL},
      {"SUM4_1", 2, 249, 0x56f9fa2a240b53f5ULL},
      {"SUM4_3", 10, 259, 0x69d058b7ca453b3aULL},
      {"COPY_1", 4, 106, 0x0f4b4ecfe238360fULL},
      {"COPY_3", 12, 110, 0x4aca8edb65632d9dULL},
      {"BOX9_1", 3, 775, 0xf744dc69b9989a22ULL},
      {"BOX9_3", 11, 811, 0x3582db7dc4178362ULL},
      {"ADD", 6, 181, 0x1213615f651623aaULL},
      {"ACCUMULATE", 7, 253, 0xac6914182dc89698ULL},
      {"ACCUMULATE_DUAL", 8, 585, 0xbb5f7243f10ad583ULL},
      {"WEIGHT_1", 5, 522, 0x4ccb35abdd3b3f99ULL},
      {"WEIGHT_3", 13, 1226, 0x3114e2d26575d3d7ULL},
      {"WEIGHT_DIRECT_1", 14, 514, 0x542056779c2c19edULL},
      {"WEIGHT_DIRECT_3", 15, 1202, 0xa864fe2d027ade90ULL},
      {"DIVIDE", 0, 180, 0x06523550c7aaffacULL},
  };
  const std::span<const Program> order = CompileOrder();
  ASSERT_EQ(order.size(), std::size(expected));
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto& [name, slot, bytes, hash] = expected[i];
    EXPECT_STREQ(InfoOf(order[i]).name, name);
    EXPECT_EQ(static_cast<std::size_t>(order[i]), slot) << name;
    EXPECT_EQ(std::strlen(TextOf(order[i])), bytes) << name;
    EXPECT_EQ(Fnv1a(TextOf(order[i])), hash) << name;
  }
}

TEST(Programs, SixteenSlotsAreFilledAndEveryUniformIsFound) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const Programs& programs = card.filter.programs();
  std::set<std::uint32_t> names;
  for (const Program program : CompileOrder()) {
    names.insert(programs.programs()[static_cast<std::size_t>(program)]);
    names.insert(programs.shaders()[static_cast<std::size_t>(program)]);
    const ProgramInfo& info = InfoOf(program);
    for (std::size_t i = 0; i < info.uniforms.size() && info.uniforms[i] != nullptr; ++i) {
      EXPECT_GE(programs.Location(program, i), 0) << info.name << " " << info.uniforms[i];
    }
  }
  EXPECT_EQ(names.size(), 32U);
  EXPECT_EQ(names.count(0), 0U);
  for (const std::size_t slot : {16U, 17U}) {
    EXPECT_EQ(programs.programs()[slot] + programs.shaders()[slot], 0U);
  }
}

}  // namespace
}  // namespace mirellon::gpu
