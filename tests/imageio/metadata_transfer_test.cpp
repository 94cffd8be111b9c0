#include "imageio/metadata_transfer.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/child_process.h"
#include "base/file_descriptor.h"
#include "imageio/image_files.h"
#include "imageio/load_image.h"
#include "imageio/save_image.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace {

namespace fs = std::filesystem;
using picture::PicBuf;
using test::ReadBytes;
using test::TemporaryFolder;

base::ChildResult Exiftool(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "exiftool");
  return base::RunChild(arguments, "/", nullptr);
}

bool HasExiftool() {
  return Exiftool({"-ver"}).end == base::ChildResult::End::kExited;
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

SaveReport Save(const PicBuf& picture, const fs::path& target, const fs::path& source,
                const base::RunControl* control = nullptr) {
  SaveOptions options;
  options.control = control;
  SaveReport report;
  const bool failed = WriteImageFile(picture, target, source, 85, options, &report);
  EXPECT_EQ(failed, report.status != SaveStatus::kSaved);
  return report;
}

TEST(MetadataTransferTest, TagsAndProfileArriveUnderAnyName) {
  if (!HasExiftool()) GTEST_SKIP() << "exiftool is not installed";
  const TemporaryFolder folder;
  const std::string odd = "-%d '\"$HOME`id`\n@x\xFF.";
  for (const std::string& name : {std::string("plain."), odd}) {
    const fs::path source = folder / (name + "source.jpg");
    MakeSource(folder / "made.jpg");
    fs::rename(folder / "made.jpg", source);
    const std::string before = ReadBytes(source);
    for (const auto& [extension, bits] : {std::pair{"jpg", 8}, {"tif", 16}, {"png", 16}}) {
      SCOPED_TRACE(name + extension);
      const PicBuf picture = test::RandomPicture(9, 7, 3, bits, 1);
      fs::path target = folder / (name + extension);
      const SaveReport report = Save(picture, target, source);
      ASSERT_EQ(report.status, SaveStatus::kSaved) << report.cause;
      EXPECT_TRUE(report.warnings.empty()) << report.warnings[0];
      Document document;
      ASSERT_FALSE(LoadImageFile(document, target, true));
      EXPECT_EQ(document.exif.make, L"Maker");
      EXPECT_EQ(document.exif.model, L"The Model");
      EXPECT_EQ(document.exif.iso, L"400");
      EXPECT_EQ(document.exif.exposure, L"1/125 sec.");
      EXPECT_EQ(document.exif.dateTaken, L"2004:01:02 14:26:41");
      if (bits == 16) {
        EXPECT_TRUE(test::SamePicture(document.source, picture));
      }
      fs::rename(target, folder / "safe");
      const auto profile = Exiftool({"-b", "-icc_profile", (folder / "safe").string()});
      EXPECT_EQ(profile.output, IccProfile());
      fs::remove(folder / "safe");
    }
    EXPECT_EQ(ReadBytes(source), before);
  }
}

TEST(MetadataTransferTest, ASourceWithoutTagsIsNoFault) {
  if (!HasExiftool()) GTEST_SKIP() << "exiftool is not installed";
  const TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 8, 1);
  ASSERT_EQ(Save(picture, folder / "source.bmp", {}).status, SaveStatus::kSaved);
  for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
    const SaveReport report = Save(picture, folder / name, folder / "source.bmp");
    EXPECT_TRUE(report.warnings.empty()) << report.warnings[0];
  }
  EXPECT_EQ(Save(picture, folder / "b.bmp", folder / "source.bmp").warnings,
            std::vector<std::string>{"the metadata was not copied: BMP files cannot hold any"});
  const SaveReport missing = Save(picture, folder / "c.png", folder / "gone.jpg");
  EXPECT_EQ(missing.status, SaveStatus::kSaved);
  ASSERT_EQ(missing.warnings.size(), 1U);
  EXPECT_NE(missing.warnings[0].find("exiftool failed"), std::string::npos) << missing.warnings[0];
}

// Puts a program of ours in the tool's place for a test's time.
class ToolInstead {
 public:
  explicit ToolInstead(const std::string& script) {
    if (const char* path = std::getenv("PATH"); path != nullptr) before_ = path;
    if (!script.empty()) {
      std::ofstream(folder_ / "exiftool") << "#!/bin/sh\nPATH='" << before_ << "'\n" << script;
      chmod((folder_ / "exiftool").c_str(), 0700);
    }
    setenv("PATH", folder_.path().c_str(), 1);
  }
  ~ToolInstead() { setenv("PATH", before_.c_str(), 1); }
  ToolInstead(const ToolInstead&) = delete;
  ToolInstead& operator=(const ToolInstead&) = delete;

 private:
  TemporaryFolder folder_;
  std::string before_;
};

TEST(MetadataTransferTest, AFaultOfTheToolCostsOnlyTheMetadata) {
  const TemporaryFolder folder;
  const PicBuf picture = test::RandomPicture(9, 7, 3, 8, 1);
  test::WriteBytes(folder / "source.jpg", "x");
  const std::string start = "the metadata was not copied: ";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", start + "exiftool is not installed"},
      {"echo 'Warning: odd' >&2\necho 'Error: no good' >&2\nexit 1\n",
       start + "exiftool failed (Error: no good)"},
      {"exit 2\n", start + "exiftool failed"},
      {"echo 'Warning: [minor] odd'\necho 'Warning: No writable tags set from source'\n", ""},
      {"echo 'Warning: [minor] odd'\necho 'Warning: Bad'\n", "the metadata may be incomplete (Warning: Bad)"},
      {"kill -KILL $$\n", start + "exiftool did not come to its end"},
      {"for last; do :; done\nrm \"$last\"\necho broken > \"$last\"\nexit 1\n", start + "exiftool failed"},
      {"for last; do :; done\nrm \"$last\"\n: > \"$last\"\n", start + "exiftool left a damaged file"},
  };
  for (const auto& [script, warning] : cases) {
    SCOPED_TRACE(script);
    const ToolInstead tool(script);
    fs::path target = folder / "out.png";
    const SaveReport report = Save(picture, target, folder / "source.jpg");
    EXPECT_EQ(report.status, SaveStatus::kSaved) << report.cause;
    EXPECT_EQ(report.warnings, std::vector<std::string>(warning.empty() ? 0 : 1, warning));
    Document document;
    ASSERT_FALSE(LoadImageFile(document, target, true));
    EXPECT_TRUE(test::SamePicture(document.source, picture));
  }
}

TEST(MetadataTransferTest, AnAbortRequestStopsTheTool) {
  const TemporaryFolder folder;
  test::WriteBytes(folder / "source.jpg", "x");
  fs::create_directory(folder / "out");
  ASSERT_EQ(mkfifo((folder / "running").c_str(), 0600), 0);
  const base::FileDescriptor fifo(open((folder / "running").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  const ToolInstead tool("echo x > '" + (folder / "running").string() + "'\nsleep 100\n");
  base::RunControl control;
  std::jthread stopper([&control, &fifo] {
    pollfd wait{fifo.get(), POLLIN, 0};
    EXPECT_EQ(poll(&wait, 1, 30000), 1);
    control.RequestAbort();
  });
  const SaveReport report =
      Save(test::RandomPicture(9, 7, 3, 8, 1), folder / "out/a.png", folder / "source.jpg", &control);
  EXPECT_EQ(report.status, SaveStatus::kAborted);
  EXPECT_TRUE(fs::is_empty(folder / "out"));
}

}  // namespace

}  // namespace mirellon::imageio
