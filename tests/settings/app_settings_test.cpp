#include "settings/app_settings.h"

#include <string>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {

TEST(AppSettingsTest, JpegQualityIsKeptAsItIs) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(ReadJpegQuality(folder / "new"), 85);
  for (const int quality : {70, 9, 0, -5, 300}) {
    EXPECT_FALSE(WriteJpegQuality(folder / "new", quality));
    EXPECT_EQ(ReadJpegQuality(folder / "new"), quality);
  }
  EXPECT_EQ(test::ReadBytes(folder / "new/MirellonGPU20/MirellonGPU20.txt"), "[General]\njpeg = 300\n");
}

TEST(AppSettingsTest, OnlyTheKeyChanges) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = base::SettingsFile(folder.path());
  ASSERT_FALSE(base::EnsureFolder(file.parent_path()));
  const std::string text = "[GENERAL]\r\nHW Accel=1\r\nJpeg = \"70\"\r\n[Other]\r\nx=y\r\n";
  test::WriteBytes(file, text);
  EXPECT_EQ(ReadJpegQuality(folder.path()), 70);
  EXPECT_FALSE(WriteJpegQuality(folder.path(), 70));
  EXPECT_EQ(test::ReadBytes(file), text) << "it said so already";
  EXPECT_FALSE(WriteJpegQuality(folder.path(), 71));
  EXPECT_EQ(test::ReadBytes(file), "[GENERAL]\r\nHW Accel = 1\r\njpeg = 71\r\n\r\n[Other]\r\nx = y\r\n");
}

TEST(AppSettingsTest, AFileThatCannotBeUnderstoodIsLeftAlone) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = base::SettingsFile(folder.path());
  ASSERT_FALSE(base::EnsureFolder(file.parent_path()));
  const std::string utf16("\xFF\xFE[\0G\0", 6);
  test::WriteBytes(file, utf16);
  EXPECT_EQ(ReadJpegQuality(folder.path()), 85);
  EXPECT_TRUE(WriteJpegQuality(folder.path(), 70));
  EXPECT_EQ(test::ReadBytes(file), utf16);
}

}  // namespace mirellon::settings
