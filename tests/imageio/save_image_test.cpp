#include "imageio/save_image.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/text.h"
#include "imageio/image_files.h"
#include "imageio/load_image.h"
#include "settings/app_settings.h"
#include "support/small_disk.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace {

namespace fs = std::filesystem;
using picture::PicBuf;
using test::ReadBytes;
using test::TemporaryFolder;

std::size_t FilesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

SaveReport Write(const PicBuf& picture, const fs::path& target, const SaveOptions& options = {},
                 const fs::path& source = {}, int quality = 85) {
  SaveReport report;
  const bool failed = WriteImageFile(picture, target, source, quality, options, &report);
  EXPECT_EQ(failed, report.status != SaveStatus::kSaved) << report.cause;
  EXPECT_EQ(failed, !report.cause.empty());
  return report;
}

PicBuf Reload(fs::path path) {
  Document document;
  LoadReport report;
  EXPECT_FALSE(LoadImageFile(document, path, true, &report)) << path << report.cause;
  return std::move(document.source);
}

TEST(SaveImageTest, LosslessFormatsComeBackBitForBit) {
  const TemporaryFolder folder;
  for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {17, 2}, {129, 64}}) {
    for (const int components : {1, 3}) {
      for (const int bits : {8, 16}) {
        for (const std::string extension : {".png", ".tif", ".bmp"}) {
          if (bits == 16 && extension == ".bmp") continue;
          SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + "x" +
                       std::to_string(components) + "@" + std::to_string(bits) + extension);
          const PicBuf picture = test::RandomPicture(width, height, components, bits, 1);
          const fs::path path = folder / ("p" + extension);
          ASSERT_EQ(Write(picture, path).status, SaveStatus::kSaved);
          EXPECT_TRUE(test::SamePicture(Reload(path), picture));
        }
      }
    }
  }
}

TEST(SaveImageTest, JpegQualityIsThatAsked) {
  const TemporaryFolder folder;
  const PicBuf picture = test::PhotoLikePicture(64, 48, 3, 8, 1);
  const auto file = [&](int quality) {
    EXPECT_EQ(Write(picture, folder / "q.jpg", {}, {}, quality).status, SaveStatus::kSaved);
    return ReadBytes(folder / "q.jpg");
  };
  EXPECT_LT(file(30).size(), file(60).size());
  EXPECT_NE(file(95), file(94));
  EXPECT_EQ(file(0), file(95));
  EXPECT_EQ(file(-2147483647 - 1), file(95));
  EXPECT_EQ(file(1000), file(100));
  EXPECT_EQ(Reload(folder / "q.jpg")->components, 3);
  EXPECT_EQ(Write(test::PhotoLikePicture(9, 7, 1, 8, 1), folder / "grey.jpg").status, SaveStatus::kSaved);
  EXPECT_EQ(Reload(folder / "grey.jpg")->components, 1);
}

TEST(SaveImageTest, OtherFormatsBecomeTiff) {
  const TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 16, 1);
  test::WriteBytes(folder / "source.jpg", "x");
  const SaveReport report = Write(picture, folder / "out.gif", {}, folder / "source.jpg");
  EXPECT_EQ(report.written, folder / "out.tif");
  ASSERT_EQ(report.warnings.size(), 1U);
  EXPECT_NE(report.warnings[0].find("metadata was not copied"), std::string::npos);
  EXPECT_TRUE(test::SamePicture(Reload(folder / "out.tif"), picture));
  EXPECT_EQ(FilesIn(folder.path()), 2U);
}

TEST(SaveImageTest, TellsBeforehandWhatSpeaksAgainstATarget) {
  const TemporaryFolder folder;
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
  ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
  SaveOptions keep;
  keep.overwrite = false;
  struct Case {
    const PicBuf& picture;
    fs::path target;
    SaveOptions options;
    SaveStatus status;
    std::string cause;
  };
  const std::vector<Case> cases = {
      {picture, folder / "new.png", keep, SaveStatus::kSaved, ""},
      {none, folder / "new.png", {}, SaveStatus::kNoPicture, "no picture"},
      {picture, "", {}, SaveStatus::kNotWritable, "no file name"},
      {picture, source, {}, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "." / "source.png", {}, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "link.png", keep, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "hard.png", {}, SaveStatus::kTargetIsSource, "itself"},
      {picture, folder / "folder.png", {}, SaveStatus::kNotWritable, "folder of that name"},
      {picture, folder / "folder.png", keep, SaveStatus::kNotWritable, "folder of that name"},
      {picture, folder / "pipe.png", {}, SaveStatus::kNotWritable, "pipe"},
      {picture, folder / "no/new.png", {}, SaveStatus::kNotWritable, "folder does not exist"},
      {picture, source / "new.png", {}, SaveStatus::kNotWritable, "Not a directory"},
      {picture, folder / (std::string(300, 'n') + ".png"), {}, SaveStatus::kNotWritable, "name too long"},
      {deep, folder / "new.jpg", {}, SaveStatus::kUnsupportedDepth, "JPEG cannot hold colour with 16 bits"},
      {deep, folder / "new.bmp", {}, SaveStatus::kUnsupportedDepth, "BMP cannot hold colour with 16 bits"},
      {wide, folder / "new.jpg", {}, SaveStatus::kUnsupportedDepth, "more than 65500 pixels"},
      {wide, folder / "new.png", {}, SaveStatus::kSaved, ""},
      {wider, folder / "new.png", {}, SaveStatus::kUnsupportedDepth, "more than 1000000 pixels"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.target);
    const SaveReport report = CheckTarget(c.picture, c.target, source, c.options);
    EXPECT_EQ(report.status, c.status) << report.cause;
    EXPECT_NE(report.cause.find(c.cause), std::string::npos) << report.cause;
    const std::size_t before = FilesIn(folder.path());
    if (c.status != SaveStatus::kSaved) {
      EXPECT_EQ(Write(c.picture, c.target, c.options, source).status, c.status);
    }
    EXPECT_EQ(FilesIn(folder.path()), before);
  }
  const SaveReport exists = Write(picture, source, keep);
  EXPECT_EQ(exists.status, SaveStatus::kTargetExists);
  EXPECT_TRUE(test::SamePicture(Reload(source), picture));
}

TEST(SaveImageTest, TheLimitsOfSidesAreTheEncoders) {
  const TemporaryFolder folder;
  EXPECT_EQ(Write(test::ConstantPicture(65500, 1, 1, 8, 9), folder / "w.jpg").status, SaveStatus::kSaved);
  EXPECT_EQ(Write(test::ConstantPicture(1000000, 1, 1, 8, 9), folder / "w.png").status, SaveStatus::kSaved);
  EXPECT_EQ(Write(test::ConstantPicture(1000001, 1, 1, 8, 9), folder / "w.tif").status, SaveStatus::kSaved);
}

TEST(SaveImageTest, AFolderWithoutPermissionIsNotWritable) {
  if (geteuid() == 0) GTEST_SKIP() << "the super-user may write everywhere";
  const TemporaryFolder folder;
  ASSERT_EQ(chmod(folder.path().c_str(), 0555), 0);
  const SaveReport report = Write(test::RandomPicture(9, 7, 3, 8, 1), folder / "new.png");
  EXPECT_EQ(report.status, SaveStatus::kNotWritable);
  EXPECT_EQ(report.cause, "Permission denied");
}

TEST(SaveImageTest, AnAbortRequestLeavesNothing) {
  const TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(200, 200, 3, 8, 1);
  base::RunControl control;
  SaveOptions options;
  options.control = &control;
  control.RequestAbort();
  for (const char* name : {"a.png", "a.tif", "a.bmp", "a.jpg"}) {
    EXPECT_EQ(Write(picture, folder / name, options).status, SaveStatus::kAborted);
  }
  EXPECT_EQ(FilesIn(folder.path()), 0U);
}

// Encoders that call a full disk a success are not believed.
TEST(SaveImageTest, TellsOfAFullDisk) {
  const TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(300, 300, 3, 8, 1);
  const int wrong = test::RunInChild([&] {
    if (!test::MountSmallDisk(folder.path(), "128k")) return test::kCannotTest;
    int count = 0;
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.jpg"}) {
      SaveReport report;
      const bool failed = WriteImageFile(picture, folder / name, {}, 100, {}, &report);
      const bool told =
          report.status == SaveStatus::kNotWritable && report.cause == "No space left on device";
      if (!failed || !told || FilesIn(folder.path()) != 0) ++count;
    }
    return count;
  });
  if (wrong == test::kCannotTest) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_EQ(wrong, 0);
}

class Owner : public base::WindowServices {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& /*caption*/,
                   base::MessageKind /*kind*/) override {
    ADD_FAILURE() << base::Utf8FromWide(text);
  }
  std::optional<fs::path> AskOpenPath(const std::wstring& /*title*/) override { return {}; }
  std::optional<fs::path> AskSavePath(const std::wstring& title, const fs::path& proposal) override {
    EXPECT_EQ(title, L"Save As...");
    asked = proposal;
    return answer;
  }
  fs::path asked;
  std::optional<fs::path> answer;
};

TEST(SaveImageTest, AsksForANameAndKeepsTheQuality) {
  const TemporaryFolder folder;
  Owner owner;
  Document document;
  document.owner = &owner;
  document.result = test::RandomPicture(9, 7, 3, 8, 1);
  document.currentPath = folder / "IMG_01.v2.PNG";
  SaveOptions options;
  options.metadata = false;
  options.applicationData = folder / "config";
  ASSERT_FALSE(settings::WriteJpegQuality(options.applicationData, -5));
  fs::path path;
  SaveReport report;
  EXPECT_TRUE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(report.status, SaveStatus::kCancelled);
  EXPECT_EQ(owner.asked, folder / "IMG_01.v2-denoised");

  owner.answer = folder / "chosen.v2";
  EXPECT_FALSE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(path, folder / "chosen.v2.png") << "the photograph's own format is the one selected";
  EXPECT_TRUE(fs::exists(path));
  EXPECT_EQ(document.currentPath, folder / "IMG_01.v2.PNG");
  EXPECT_EQ(ReadBytes(folder / "config/MirellonGPU20/MirellonGPU20.txt"), "[General]\njpeg = 4294967291\n");

  // With a path there is no question, and the stored quality of -5 counts as 95.
  owner.answer = std::nullopt;
  EXPECT_FALSE(SaveImageAs(document, path = folder / "stored.jpg", options));
  options.jpegQuality = 95;
  EXPECT_FALSE(SaveImageAs(document, path = folder / "given.jpg", options));
  EXPECT_EQ(ReadBytes(folder / "stored.jpg"), ReadBytes(folder / "given.jpg"));
  EXPECT_EQ(settings::ReadJpegQuality(options.applicationData), -5);

  document.result = PicBuf();
  EXPECT_TRUE(SaveImageAs(document, path, options, &report));
  EXPECT_EQ(report.status, SaveStatus::kNoPicture);
}

TEST(SaveImageTest, BitmapsOfOddKinds) {
  const Bitmap two(CreateBitmap(test::ConstantPicture(3, 2, 2, 8, 7)));
  ASSERT_TRUE(two);
  EXPECT_EQ(FreeImage_GetWidth(two.get()), 3U);
  EXPECT_EQ(CreateBitmap(PicBuf(3, 2, 1, 64)), nullptr);
}

}  // namespace

}  // namespace mirellon::imageio
