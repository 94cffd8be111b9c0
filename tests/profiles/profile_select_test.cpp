#include "profiles/profile_select.h"

#include <string>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirellon::profiles {

TEST(ProfileSelectTest, PanelAndBatchFollowTheirOwnRules) {
  const test::TemporaryFolder folder;
  NoiseProfileStore store({folder / "p.ini", {}});
  ASSERT_FALSE(store.Load());
  const auto add = [&store](const wchar_t* camera, const wchar_t* iso, double luminance) {
    engine::DenoiseParameters set;
    set.m_dImmerkaerY = luminance;
    set.m_dImmerkaerUV = luminance;
    return store.AddOrReplace(camera, iso, set);
  };
  ASSERT_FALSE(add(kUnknownCamera, L"100", 1.0) || add(kUnknownCamera, L"800", 5.0) ||
               add(kUnknownCamera, L"3200", 9.0));
  ASSERT_FALSE(add(L"Canon / EOS 5D", L"200", 2.0) || add(L"Canon / EOS 5D", L"1600", 8.0));

  const struct {
    PhotoIdentity photo;
    double noise;
    const char* panel;  // camera, entry, rule
    const char* batch;
  } cases[] = {
      {{L"Canon", L"Canon EOS 5D", L"1600"}, 2.0, "1 1 exact", "1 1 exact"},
      {{L"Canon", L"EOS5D", L"200 "}, 8.0, "1 0 exact", "1 0 exact"},
      {{L"Canon", L"EOS 5D", L"400"}, 7.0, "1 1 nearest", "0 0 fallback"},
      {{L"Canon", L"EOS 5D", L""}, 1.0, "1 0 nearest", "0 0 fallback"},
      {{L"Canon", L"EOS 6D", L"800"}, 1.0, "0 1 exact", "0 1 exact"},
      {{L"Canon", L"EOS 6D", L"6400"}, 9.0, "0 2 nearest", "0 0 fallback"},
      {{L"", L"Canon / EOS 5D", L"200"}, 9.0, "0 2 nearest", "0 0 fallback"},
      {{L"", L"", L"800"}, 1.0, "0 1 exact", "0 0 fallback"},
  };
  const auto text = [](const ProfileChoice& choice) {
    EXPECT_NE(choice.parameters, nullptr);
    return std::to_string(choice.camera) + " " + std::to_string(choice.entry) + " " + RuleName(choice.rule);
  };
  for (const auto& c : cases) {
    EXPECT_EQ(text(SelectProfileForImage(store, c.photo, c.noise, c.noise)), c.panel) << c.noise;
    EXPECT_EQ(text(SelectProfileForBatch(store, c.photo)), c.batch) << c.noise;
  }
}

TEST(ProfileSelectTest, AStoreWithoutEntriesGivesNoSet) {
  const test::TemporaryFolder folder;
  for (const char* text : {"", "[General]\nNo Of Cameras=0\n"}) {
    test::WriteBytes(folder / "p.ini", text);
    NoiseProfileStore store({folder / "p.ini", {}});
    ASSERT_FALSE(store.Load());
    EXPECT_EQ(SelectProfileForImage(store, {L"a", L"b", L"0"}, 1.0, 1.0).parameters, nullptr);
    EXPECT_EQ(SelectProfileForBatch(store, {L"a", L"b", L"0"}).parameters, nullptr);
  }
}

}  // namespace mirellon::profiles
