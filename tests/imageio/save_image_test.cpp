#include "imageio/save_image.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "imageio/image_files.h"
#include "imageio/load_image.h"
#include "settings/app_settings.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace fs = std::filesystem;
using picture::PicBuf;

SaveReport Write(const PicBuf& picture, const fs::path& target, const SaveOptions& options = {},
                 const fs::path& source = {}, int quality = 85) {
  SaveReport report;
  const bool failed = WriteImageFile(picture, target, source, quality, options, &report);
  EXPECT_EQ(failed, report.status != SaveStatus::kSaved) << report.cause;
  EXPECT_EQ(failed, !report.cause.empty());
  return report;
}

TEST(SaveImageTest, LosslessFormatsComeBackBitForBit) {
  const test::TemporaryFolder folder;
  for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {17, 2}, {129, 64}}) {
    for (const auto& [components, bits] : {std::pair{1, 8}, {3, 8}, {1, 16}, {3, 16}}) {
      for (const char* name : {"p.png", "p.tif", "p.bmp"}) {
        if (bits == 16 && name == std::string("p.bmp")) continue;
        const PicBuf picture = test::RandomPicture(width, height, components, bits, 1);
        ASSERT_EQ(Write(picture, folder / name).status, SaveStatus::kSaved);
        EXPECT_TRUE(test::SamePicture(test::ReadPicture(folder / name), picture)) << name;
      }
    }
  }
}

TEST(SaveImageTest, JpegQualityIsThatAsked) {
  const test::TemporaryFolder folder;
  const PicBuf picture = test::PhotoLikePicture(64, 48, 3, 8, 1);
  const auto file = [&](int quality) {
    EXPECT_EQ(Write(picture, folder / "q.jpg", {}, {}, quality).status, SaveStatus::kSaved);
    return test::ReadBytes(folder / "q.jpg");
  };
  EXPECT_LT(file(30).size(), file(60).size());
  EXPECT_EQ(file(0), file(95));
  EXPECT_EQ(file(-2147483647 - 1), file(95));
  EXPECT_EQ(file(1000), file(100));
  EXPECT_EQ(test::ReadPicture(folder / "q.jpg")->components, 3);
  EXPECT_EQ(Write(test::PhotoLikePicture(9, 7, 1, 8, 1), folder / "grey.jpg").status, SaveStatus::kSaved);
  EXPECT_EQ(test::ReadPicture(folder / "grey.jpg")->components, 1);
}

TEST(SaveImageTest, TellsBeforehandWhatSpeaksAgainstATarget) {
  const test::TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 8, 1);
  const PicBuf deep = test::RandomPicture(9, 7, 3, 16, 1);
  const PicBuf wide = test::ConstantPicture(65501, 1, 1, 8, 9);
  const PicBuf wider = test::ConstantPicture(1000001, 1, 1, 8, 9);
  const PicBuf none;
  const fs::path source = folder / "source.png";
  ASSERT_EQ(Write(picture, source).status, SaveStatus::kSaved);
  fs::create_symlink("source.png", folder / "link.png");
  fs::create_hard_link(source, folder / "hard.png");
  fs::create_directory(folder / "folder.png");
  fs::create_directory(folder / "closed");
  ASSERT_EQ(chmod((folder / "closed").c_str(), 0555), 0);
  ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
  struct Case {
    const PicBuf& picture;
    fs::path target;
    bool overwrite;
    SaveStatus status;
    std::string cause;
  };
  std::vector<Case> cases = {
      {none, folder / "new.png", true, SaveStatus::kNoPicture, "no picture"},
      {picture, "", true, SaveStatus::kNotWritable, "no file name"},
      {picture, source, true, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "link.png", false, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "hard.png", true, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "folder.png", true, SaveStatus::kNotWritable, "folder of that name"},
      {picture, folder / "pipe.png", true, SaveStatus::kNotWritable, "pipe"},
      {picture, folder / "no/new.png", true, SaveStatus::kNotWritable, "folder does not exist"},
      {picture, folder / (std::string(300, 'n') + ".png"), true, SaveStatus::kNotWritable, "name too long"},
      {deep, folder / "new.jpg", true, SaveStatus::kUnsupportedDepth, "JPEG cannot hold colour with 16 bits"},
      {deep, folder / "new.bmp", true, SaveStatus::kUnsupportedDepth, "BMP cannot hold colour with 16 bits"},
      {wide, folder / "new.jpg", true, SaveStatus::kUnsupportedDepth, "more than 65500 pixels"},
      {wider, folder / "new.png", true, SaveStatus::kUnsupportedDepth, "more than 1000000 pixels"}};
  // The super-user may write everywhere.
  if (geteuid() != 0)
    cases.push_back({picture, folder / "closed/a.png", true, SaveStatus::kNotWritable, "denied"});
  const std::size_t before = test::FilesIn(folder.path());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.target);
    const SaveOptions options{.overwrite = c.overwrite};
    const SaveReport report = CheckTarget(c.picture, c.target, source, options);
    EXPECT_EQ(report.status, c.status) << report.cause;
    EXPECT_NE(report.cause.find(c.cause), std::string::npos) << report.cause;
    EXPECT_EQ(Write(c.picture, c.target, options, source).status, c.status);
    EXPECT_EQ(test::FilesIn(folder.path()), before);
  }
  const SaveOptions keep{.overwrite = false};
  EXPECT_EQ(Write(picture, source, keep).status, SaveStatus::kTargetExists);
  EXPECT_TRUE(test::SamePicture(test::ReadPicture(source), picture));
  EXPECT_EQ(Write(picture, folder / "new.png", keep).status, SaveStatus::kSaved);
}

TEST(SaveImageTest, TheLimitsOfSidesAreTheEncoders) {
  const test::TemporaryFolder folder;
  for (const auto& [side, name] : {std::pair{65500, "w.jpg"}, {1000000, "w.png"}, {1000001, "w.tif"}}) {
    EXPECT_EQ(Write(test::ConstantPicture(side, 1, 1, 8, 9), folder / name).status, SaveStatus::kSaved)
        << name;
  }
}

TEST(SaveImageTest, AsksForANameAndKeepsTheQuality) {
  const test::TemporaryFolder folder;
  test::ScriptedOwner owner;
  Document document;
  document.owner = &owner;
  document.result = test::RandomPicture(9, 7, 3, 8, 1);
  document.currentPath = folder / "IMG_01.v2.PNG";
  SaveOptions options{.metadata = false, .applicationData = folder / "config"};
  ASSERT_FALSE(settings::WriteJpegQuality(options.applicationData, -5));
  fs::path path;
  SaveReport report;
  EXPECT_TRUE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(report.status, SaveStatus::kCancelled);
  owner.answer = folder / "chosen.v2";
  EXPECT_FALSE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(path, folder / "chosen.v2.png") << "the photograph's own format is the one selected";
  EXPECT_EQ(document.currentPath, folder / "IMG_01.v2.PNG");
  EXPECT_EQ(test::ReadBytes(folder / "config/MirellonGPU20/MirellonGPU20.txt"),
            "[General]\njpeg = 4294967291\n");

  // With a path there is no question, and the stored quality of -5 counts as 95.
  EXPECT_FALSE(SaveImageAs(document, path = folder / "stored.jpg", options));
  options.jpegQuality = 95;
  EXPECT_FALSE(SaveImageAs(document, path = folder / "given.jpg", options));
  EXPECT_EQ(test::ReadBytes(folder / "stored.jpg"), test::ReadBytes(folder / "given.jpg"));
  EXPECT_EQ(settings::ReadJpegQuality(options.applicationData), -5);
  const std::wstring asked = L"Save As...|" + (folder / "IMG_01.v2-denoised").wstring();
  EXPECT_EQ(owner.said, (std::vector<std::wstring>{asked, asked}));

  document.result = PicBuf();
  EXPECT_TRUE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(report.status, SaveStatus::kNoPicture);
}

TEST(SaveImageTest, BitmapsOfOddKinds) {
  EXPECT_TRUE(Bitmap(CreateBitmap(test::ConstantPicture(3, 2, 2, 8, 7))));
  EXPECT_EQ(CreateBitmap(PicBuf(3, 2, 1, 64)), nullptr);
}

}  // namespace mirellon::imageio
