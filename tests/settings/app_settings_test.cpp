#include "settings/app_settings.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {

namespace {

using test::TemporaryFolder;

std::string Content(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

TEST(AppSettingsTest, JpegQualityIsKeptAsItIs) {
  const TemporaryFolder folder;
  EXPECT_EQ(ReadJpegQuality(folder / "new"), 85);
  for (const int quality : {70, 9, 0, -5, 300}) {
    EXPECT_FALSE(WriteJpegQuality(folder / "new", quality));
    EXPECT_EQ(ReadJpegQuality(folder / "new"), quality);
  }
  EXPECT_EQ(Content(folder / "new/MirellonGPU20/MirellonGPU20.txt"), "[General]\njpeg = 300\n");
}

TEST(AppSettingsTest, OnlyTheKeyChanges) {
  const TemporaryFolder folder;
  const std::filesystem::path file = base::SettingsFile(folder.path());
  ASSERT_FALSE(base::EnsureFolder(file.parent_path()));
  const std::string text = "[GENERAL]\r\nHW Accel=1\r\nJpeg = \"70\"\r\n[Other]\r\nx=y\r\n";
  std::ofstream(file, std::ios::binary) << text;
  EXPECT_EQ(ReadJpegQuality(folder.path()), 70);
  EXPECT_FALSE(WriteJpegQuality(folder.path(), 70));
  EXPECT_EQ(Content(file), text) << "it said so already";
  EXPECT_FALSE(WriteJpegQuality(folder.path(), 71));
  EXPECT_EQ(Content(file), "[GENERAL]\r\nHW Accel = 1\r\njpeg = 71\r\n\r\n[Other]\r\nx = y\r\n");
}

TEST(AppSettingsTest, AFileThatCannotBeUnderstoodIsLeftAlone) {
  const TemporaryFolder folder;
  const std::filesystem::path file = base::SettingsFile(folder.path());
  ASSERT_FALSE(base::EnsureFolder(file.parent_path()));
  const std::string utf16("\xFF\xFE[\0G\0", 6);
  std::ofstream(file, std::ios::binary) << utf16;
  EXPECT_EQ(ReadJpegQuality(folder.path()), 85);
  EXPECT_TRUE(WriteJpegQuality(folder.path(), 70));
  EXPECT_EQ(Content(file), utf16);
  std::ofstream(folder / "file") << "in the way";
  EXPECT_EQ(ReadJpegQuality(folder / "file"), 85);
  EXPECT_TRUE(WriteJpegQuality(folder / "file", 70));
}

}  // namespace

}  // namespace mirellon::settings
