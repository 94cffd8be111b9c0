#include "settings/options_state.h"

#include <gtest/gtest.h>

#include "base/paths.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {

class OptionsStateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(base::EnsureFolder(file_.parent_path()));
    test::WriteBytes(file_, kStored);
    test::WriteBytes(
        folder_ / "shared.ini",
        "[General]\nLanguages No = 2\n[1]\nLanguage = Deutsch\nstring64 = Neustart n\xC3\xB6tig!\n");
    localization_.LoadTexts({folder_ / "shared.ini", folder_ / "own.ini"});
    localization_.LoadLanguages();
  }
  OptionsState Open(bool cardUsable, int scheme = 2) {
    return {settings_, localization_, [cardUsable] { return cardUsable; }, scheme};
  }

  static constexpr const char* kStored = "[General]\nHW Accel = 1\nGPUCPUFusion = 1\nAdvancedDenoise = 1\n";
  test::TemporaryFolder folder_;
  std::filesystem::path file_ = base::SettingsFile(folder_.path());
  AppSettings settings_{folder_.path()};
  Localization localization_;
};

TEST_F(OptionsStateTest, OpensWithWhatIsStoredAndPossible) {
  OptionsState state = Open(true);
  EXPECT_TRUE(state.hardwareEnabled() && state.hardwareChecked() && state.fusionEnabled() &&
              state.fusionChosen());
  state.CheckHardware(false);
  EXPECT_TRUE(state.hardwareEnabled() && !state.fusionEnabled() && state.fusionChosen());
  state.CheckHardware(true);
  EXPECT_TRUE(state.fusionEnabled());

  OptionsState without = Open(false);
  without.CheckHardware(true);
  EXPECT_FALSE(without.hardwareEnabled() || without.hardwareChecked() || without.fusionEnabled());
  EXPECT_TRUE(without.fusionChosen());
  EXPECT_FALSE(Open(true, 1).darkSchemeChecked());
  EXPECT_TRUE(Open(true, 3).darkSchemeChecked());
  // All of that was Cancel.
  EXPECT_EQ(test::ReadBytes(file_), kStored);
}

TEST_F(OptionsStateTest, OkWritesWhatIsShown) {
  const OptionsOutcome outcome = Open(false).Accept();
  EXPECT_EQ(outcome.warning, "");
  EXPECT_TRUE(outcome.hwAccel == 0 && outcome.fusion == 1 && !outcome.restart && !outcome.colourScheme);
  EXPECT_EQ(test::ReadBytes(file_), "[General]\nHW Accel = 0\nGPUCPUFusion = 1\nAdvancedDenoise = 0\n");
  EXPECT_NE(test::ReadBytes(folder_ / "shared.ini").find("\nLanguage Current = 0\n"), std::string::npos);
}

TEST_F(OptionsStateTest, ANewLanguageAsksForARestartInItsOwnWords) {
  OptionsState state = Open(true, 3);
  state.ChooseLanguage(1);
  state.CheckDarkScheme(false);
  state.ChooseFusion(false);
  const OptionsOutcome outcome = state.Accept();
  ASSERT_TRUE(outcome.restart.has_value());
  EXPECT_EQ(outcome.restart->caption, L"Information");
  EXPECT_EQ(outcome.restart->text, L"Neustart n\u00F6tig!");
  EXPECT_EQ(outcome.colourScheme, 1);
  EXPECT_EQ(settings_.GetNumber(Setting::kColourScheme), 1);
  EXPECT_TRUE(outcome.hwAccel == 1 && outcome.fusion == 0);
  EXPECT_EQ(localization_.Text(64), L"You have to restart application to affect the language change!");
  EXPECT_FALSE(Open(true).Accept().restart.has_value()) << "the same language once more";
}

}  // namespace mirellon::settings
