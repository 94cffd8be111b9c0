#include "imageio/metadata_transfer.h"

#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/child_process.h"
#include "imageio/exif_summary.h"
#include "imageio/image_files.h"
#include "imageio/save_image.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace fs = std::filesystem;
using picture::PicBuf;

base::ChildResult Exiftool(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "exiftool");
  return base::RunChild(arguments, "/", nullptr);
}

// An ICC profile of the least that counts as one: its header, and a table of one entry.
std::string IccProfile() {
  std::string profile(128, '\0');
  profile.replace(0, 4, test::Big(160, 4));
  profile.replace(12, 12, "mntrRGB XYZ ");
  profile.replace(36, 4, "acsp");
  return profile + test::Big(1, 4) + "cprt" + test::Big(144, 4) + test::Big(16, 4) + "text" +
         test::Big(0, 4) + "nobody's";
}

// A photograph with tags and a profile.
void MakeSource(const fs::path& path) {
  Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 16, 16, 24);
  std::string profile = IccProfile();
  FreeImage_CreateICCProfile(bitmap.get(), profile.data(), static_cast<long>(profile.size()));
  ASSERT_TRUE(test::SaveBitmap(FIF_JPEG, bitmap, path));
  const auto result =
      Exiftool({"-overwrite_original", "-Make=Maker", "-Model=The Model", "-ISO=400", "-FNumber=5.6",
                "-ExposureTime=1/125", "-DateTimeOriginal=2004:01:02 14:26:41", path.string()});
  ASSERT_EQ(result.status, 0) << result.output;
}

// Every case with the tool started for each picture, and with one that stays.
class MetadataTransferTest : public ::testing::TestWithParam<bool> {
 protected:
  SaveReport Save(const PicBuf& picture, const fs::path& target, const fs::path& source,
                  const base::RunControl* control = nullptr) {
    SaveReport report;
    const SaveOptions options{.control = control, .tool = GetParam() ? tool_.get() : nullptr};
    const bool failed = WriteImageFile(picture, target, source, 85, options, &report);
    EXPECT_EQ(failed, report.status != SaveStatus::kSaved);
    return report;
  }
  SaveReport SaveWithTool(const std::string& script, const PicBuf& picture, const fs::path& target,
                          const base::RunControl* control = nullptr);

  std::unique_ptr<MetadataTool> tool_ = std::make_unique<MetadataTool>();
};

TEST_P(MetadataTransferTest, TagsAndProfileArriveUnderAnyName) {
  if (Exiftool({"-ver"}).error != 0) GTEST_SKIP() << "exiftool is not installed";
  const test::TemporaryFolder folder;
  const fs::path source = folder / "-%d '\"$HOME`id`\n@x\xFF.source.jpg";
  MakeSource(folder / "made.jpg");
  fs::rename(folder / "made.jpg", source);
  const std::string before = test::ReadBytes(source);
  for (const auto& [extension, bits] : {std::pair{"jpg", 8}, {"tif", 16}, {"png", 16}}) {
    SCOPED_TRACE(extension);
    const PicBuf picture = test::RandomPicture(9, 7, 3, bits, 1);
    const fs::path target = folder / (std::string("-%f '\"$HOME`id`\n@y\xFF.") + extension);
    const SaveReport report = Save(picture, target, source);
    ASSERT_EQ(report.status, SaveStatus::kSaved) << report.cause;
    EXPECT_TRUE(report.warnings.empty()) << report.warnings[0];
    const ExifSummary exif = ReadExifSummary(target);
    EXPECT_EQ(exif.make + exif.model + exif.iso, L"MakerThe Model400");
    EXPECT_EQ(exif.exposure + exif.dateTaken, L"1/125 sec.2004:01:02 14:26:41");
    EXPECT_EQ(test::SamePicture(test::ReadPicture(target), picture), bits == 16) << "JPEG loses";
    fs::rename(target, folder / "safe");
    EXPECT_EQ(Exiftool({"-b", "-icc_profile", (folder / "safe").string()}).output, IccProfile());
  }
  EXPECT_EQ(test::ReadBytes(source), before);
}

TEST_P(MetadataTransferTest, ASourceWithoutTagsIsNoFault) {
  if (Exiftool({"-ver"}).error != 0) GTEST_SKIP() << "exiftool is not installed";
  const test::TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 8, 1);
  ASSERT_EQ(Save(picture, folder / "source.bmp", {}).status, SaveStatus::kSaved);
  for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
    const SaveReport report = Save(picture, folder / name, folder / "source.bmp");
    EXPECT_TRUE(report.warnings.empty()) << report.warnings[0];
  }
  EXPECT_EQ(Save(picture, folder / "b.bmp", folder / "source.bmp").warnings,
            std::vector<std::string>{"the metadata was not copied: BMP files cannot hold any"});
  const SaveReport missing = Save(picture, folder / "c.png", folder / "gone.jpg");
  EXPECT_NE(testing::PrintToString(missing.warnings).find("exiftool failed"), std::string::npos);
}

// Saves with a program of ours in the tool's place; an empty script: with none.
SaveReport MetadataTransferTest::SaveWithTool(const std::string& script, const PicBuf& picture,
                                              const fs::path& target, const base::RunControl* control) {
  const test::TemporaryFolder folder;
  const char* const path = std::getenv("PATH");
  const std::string before = path == nullptr ? "" : path;
  test::WriteBytes(folder / "source.jpg", "x");
  if (!script.empty()) {
    test::WriteBytes(folder / "exiftool", "#!/bin/sh\nPATH='" + before + "'\n" + script);
    chmod((folder / "exiftool").c_str(), 0700);
  }
  setenv("PATH", folder.path().c_str(), 1);
  tool_ = std::make_unique<MetadataTool>();
  SaveReport report = Save(picture, target, folder / "source.jpg", control);
  setenv("PATH", before.c_str(), 1);
  return report;
}

TEST_P(MetadataTransferTest, AFaultOfTheToolCostsOnlyTheMetadata) {
  const test::TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 8, 1);
  const std::string start = "the metadata was not copied: ";
  const std::string last = "for last; do :; done; rm \"$last\"; ";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", start + "exiftool is not installed"},
      {"echo 'Warning: odd'; echo 'Error: no good' >&2; exit 1", start + "exiftool failed (Error: no good)"},
      {"exit 2", start + "exiftool failed"},
      {"echo 'Warning: [minor] odd'; echo 'Warning: No writable tags set from source'", ""},
      {"echo 'Warning: [minor] odd'; echo 'Warning: Bad'", "the metadata may be incomplete (Warning: Bad)"},
      {"kill -KILL $$", start + "exiftool did not come to its end"},
      {last + "echo broken > \"$last\"; exit 1", start + "exiftool failed"},
      {last + ": > \"$last\"", start + "exiftool left a damaged file"}};
  for (const auto& [script, warning] : cases) {
    SCOPED_TRACE(script);
    const fs::path target = folder / "out.png";
    const SaveReport report = SaveWithTool(script, picture, target);
    EXPECT_EQ(report.status, SaveStatus::kSaved) << report.cause;
    EXPECT_EQ(report.warnings, std::vector<std::string>(warning.empty() ? 0 : 1, warning));
    EXPECT_TRUE(test::SamePicture(test::ReadPicture(target), picture));
  }
}

// Of a kept tool only; the one started alone then does the work.
TEST_P(MetadataTransferTest, AKeptToolThatFailsIsReplaced) {
  const test::TemporaryFolder folder;
  const std::string alone =
      "for last; do :; done; [ -e \"${last}_exiftool_tmp\" ] && { echo 'Error: exists'; exit 1; }; "
      "echo 'Warning: Alone'; exit 0";
  const std::string read =
      "if [ \"$1\" = -stay_open ]; then while read line && [ \"$line\" != -execute ]; do case $line in "
      "work/*) last=$line;; {*) mark=$line;; esac; done; ";
  for (const char* fault : {": > \"${last}_exiftool_tmp\"; exit 1", "echo \"$mark\"; read line"}) {
    SCOPED_TRACE(fault);
    const SaveReport report =
        SaveWithTool(read + fault + "; fi; " + alone, test::RandomPicture(9, 7, 3, 8, 1), folder / "a.png");
    EXPECT_EQ(report.warnings, std::vector<std::string>{"the metadata may be incomplete (Warning: Alone)"});
  }
}

base::RunControl stopped;

TEST_P(MetadataTransferTest, AnAbortRequestStopsTheTool) {
  const test::TemporaryFolder folder;
  stopped.ClearAbort();
  std::signal(SIGUSR1, [](int) { stopped.RequestAbort(); });
  const SaveReport report = SaveWithTool("kill -USR1 $PPID; sleep 100", test::RandomPicture(9, 7, 3, 8, 1),
                                         folder / "a.png", &stopped);
  EXPECT_EQ(report.status, SaveStatus::kAborted);
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

INSTANTIATE_TEST_SUITE_P(AloneAndKept, MetadataTransferTest, ::testing::Bool());

TEST(MetadataToolTest, FilesAreThoseOfAToolStartedAlone) {
  if (Exiftool({"-ver"}).error != 0) GTEST_SKIP() << "exiftool is not installed";
  const test::TemporaryFolder folder;
  MakeSource(folder / "source.jpg");
  MetadataTool tool;
  for (const char* name : {"1.jpg", "2.png", "3.tif", "4.jpg"}) {
    const PicBuf picture = test::RandomPicture(30, 20, 3, 8, 1);
    for (const char* way : {"alone", "kept"}) {
      fs::create_directory(folder / way);
      const SaveOptions options{.tool = way == std::string("kept") ? &tool : nullptr};
      ASSERT_FALSE(WriteImageFile(picture, folder / way / name, folder / "source.jpg", 85, options));
    }
    EXPECT_TRUE(test::ReadBytes(folder / "alone" / name) == test::ReadBytes(folder / "kept" / name)) << name;
  }
}

}  // namespace mirellon::imageio
