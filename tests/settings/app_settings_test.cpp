#include "settings/app_settings.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "base/paths.h"
#include "base/text.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {

class AppSettingsTest : public ::testing::Test {
 protected:
  void WriteFile(const std::string& text) {
    ASSERT_FALSE(base::EnsureFolder(file_.parent_path()));
    test::WriteBytes(file_, text);
  }
  test::TemporaryFolder folder_;
  std::filesystem::path file_ = base::SettingsFile(folder_.path());
  AppSettings settings_{folder_.path()};
};

TEST_F(AppSettingsTest, JpegQualityIsKeptAsItIs) {
  EXPECT_EQ(ReadJpegQuality(folder_ / "new"), 85);
  for (const int quality : {70, 9, 0, -5, 300}) {
    EXPECT_FALSE(WriteJpegQuality(folder_ / "new", quality));
    EXPECT_EQ(ReadJpegQuality(folder_ / "new"), quality);
  }
  EXPECT_EQ(test::ReadBytes(folder_ / "new/MirellonGPU20/MirellonGPU20.txt"), "[General]\njpeg = 300\n");
}

TEST_F(AppSettingsTest, OnlyTheKeyChanges) {
  const std::string text = "[GENERAL]\r\nHW Accel=1\r\nJpeg = \"70\"\r\n[Other]\r\nx=y\r\n";
  WriteFile(text);
  EXPECT_EQ(ReadJpegQuality(folder_.path()), 70);
  EXPECT_FALSE(WriteJpegQuality(folder_.path(), 70));
  EXPECT_EQ(test::ReadBytes(file_), text) << "it said so already";
  EXPECT_FALSE(WriteJpegQuality(folder_.path(), 71));
  EXPECT_EQ(test::ReadBytes(file_), "[GENERAL]\r\nHW Accel = 1\r\njpeg = 71\r\n\r\n[Other]\r\nx = y\r\n");
  EXPECT_EQ(test::FilesIn(file_.parent_path()), 1U) << "nothing was lost, so no copy is needed";
}

TEST_F(AppSettingsTest, NumbersHaveDefaultsAndRanges) {
  const struct {
    const char* text;
    Setting setting;
    int number;
  } cases[] = {{"", Setting::kHwAccel, 0},
               {"", Setting::kShowManualTunning, 1},
               {"", Setting::kQuality, 2},
               {"", Setting::kColourScheme, 2},
               {"HW Accel=yes", Setting::kHwAccel, 0},
               {"hw accel= 1x", Setting::kHwAccel, 1},
               {"Quality=9", Setting::kQuality, 3},
               {"Quality=none", Setting::kQuality, 1},
               {"Colour Scheme=-1", Setting::kColourScheme, 1},
               {"GPUCPUFusion=7", Setting::kGpuCpuFusion, 7}};
  for (const auto& c : cases) {
    WriteFile(std::string("[General]\n") + c.text + "\n");
    EXPECT_EQ(settings_.GetNumber(c.setting), c.number) << c.text;
  }
}

TEST_F(AppSettingsTest, FoldersComeBackAsTheyWere) {
  EXPECT_EQ(settings_.GetLatestFolder(), "");
  for (const char* name :
       {"/photos/2026", "/with ;=[x] in it", "/end ", "\"", " ", "/\xC3\xA4\xE2\x82\xAC"}) {
    EXPECT_FALSE(settings_.SetLatestFolder(name));
    EXPECT_EQ(settings_.GetLatestFolder(), name);
  }
  for (const std::string& name : {std::string("/a\nb"), std::string("/\xFF"), std::string(1024, 'x')}) {
    EXPECT_TRUE(settings_.SetLatestFolder(name)) << "no text file can hold it";
    EXPECT_EQ(settings_.GetLatestFolder(), "/\xC3\xA4\xE2\x82\xAC");
  }
}

TEST_F(AppSettingsTest, WhatCannotBeUnderstoodIsKept) {
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary.push_back(static_cast<char>(i * 7));
  const std::vector<std::string> damages = {std::string("\xFF\xFE[\0G\0", 6),
                                            binary,
                                            "[General]\njpeg=50\nqual",
                                            "[General\njpeg=50\n",
                                            "\x89PNG\r\n",
                                            std::string("[General]\nx=\0\n", 13),
                                            "[General]\nx=\xE4\n",
                                            std::string(50U << 20U, 'x')};
  for (std::size_t i = 0; i < damages.size(); ++i) {
    WriteFile(damages[i]);
    EXPECT_FALSE(settings_.SetNumber(Setting::kJpeg, 70)) << i << ": " << settings_.cause();
    EXPECT_EQ(settings_.GetNumber(Setting::kJpeg), 70) << i;
    const std::string copy = file_.string() + ".bak" + (i == 0 ? "" : std::to_string(i + 1));
    EXPECT_EQ(settings_.keptCopy(), copy);
    EXPECT_TRUE(test::ReadBytes(copy) == damages[i]) << i;
  }
}

TEST_F(AppSettingsTest, AFolderThatCannotBeWrittenIsToldOnce) {
  test::WriteBytes(folder_ / "MirellonGPU20", "in the way");
  const LoadedSettings loaded = LoadSettings(settings_, nullptr);
  EXPECT_EQ(loaded.warning, "the settings cannot be stored: the folder cannot be created");
  EXPECT_EQ(loaded.jpegQuality, 85);
}

TEST_F(AppSettingsTest, TheCrashMarkerStandsWhileTheProgramRuns) {
  EXPECT_FALSE(LoadSettings(settings_, nullptr).crashedLastTime);
  EXPECT_EQ(test::ReadBytes(file_), "[General]\nCrashed Last Time = 1\n");
  EXPECT_TRUE(LoadSettings(settings_, nullptr).crashedLastTime);
  EXPECT_FALSE(MarkOrderlyEnd(settings_));
  EXPECT_FALSE(LoadSettings(settings_, nullptr).crashedLastTime);
}

TEST_F(AppSettingsTest, TheCardIsUsedWhenWantedAndUsable) {
  for (const bool usable : {false, true}) {
    int asked = 0;
    const CardCheck check = [&] { return ++asked > 0 && usable; };
    WriteFile("[General]\nHW Accel=0\n");
    EXPECT_EQ(LoadSettings(settings_, check).hwAccel, 0);
    EXPECT_EQ(asked, 0) << "the check costs time";
    WriteFile("[General]\nHW Accel=1\n");
    EXPECT_EQ(LoadSettings(settings_, check).hwAccel, usable ? 1 : 0);
    EXPECT_EQ(settings_.GetNumber(Setting::kHwAccel), 1) << "the stored text stays";
  }
}

TEST(SettingsDocumentationTest, HasALineForEveryKey) {
  const std::string text = test::ReadBytes(MIRELLON_DOCS "/settings.md");
  std::size_t lines = 0;
  for (std::size_t at = text.find("\n| `"); at != std::string::npos; at = text.find("\n| `", at + 1)) ++lines;
  EXPECT_EQ(lines, kSettings.size());
  for (const SettingRow& row : kSettings) {
    const std::string initial = *row.initial == 0 ? "" : '`' + base::Utf8FromWide(row.initial) + '`';
    const std::string line = "\n| `" + base::Utf8FromWide(row.key) + "` | " + row.values + " | " + initial +
                             " | " + row.meaning + " |\n";
    EXPECT_NE(text.find(line), std::string::npos) << "missing:" << line;
  }
}

}  // namespace mirellon::settings
