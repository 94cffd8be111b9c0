// The real program on files, names and circumstances that it cannot like.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <FreeImage.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "imageio/save_image.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using test::ProgramResult;
using test::ProgramRun;

std::string Bytes(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteBytes(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

void WritePicture(const std::filesystem::path& file, const picture::SBxPicBuf& picture) {
  imageio::SaveOptions options;
  options.metadata = false;
  ASSERT_FALSE(imageio::WriteImageFile(picture, file, {}, 90, options));
}

// A bitmap of a kind that the program does not accept.
void WriteForeignBitmap(const std::filesystem::path& file, FREE_IMAGE_FORMAT format, int bits) {
  FIBITMAP* bitmap = FreeImage_Allocate(16, 16, bits);
  ASSERT_NE(bitmap, nullptr);
  if (RGBQUAD* palette = FreeImage_GetPalette(bitmap)) palette[3] = {10, 200, 30, 0};
  EXPECT_TRUE(FreeImage_Save(format, bitmap, file.c_str()));
  FreeImage_Unload(bitmap);
}

std::uint32_t Crc(const std::string& bytes) {
  std::uint32_t crc = ~0U;
  for (const char byte : bytes) {
    crc ^= static_cast<std::uint8_t>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

std::string BigEndian(std::uint32_t value) {
  std::string bytes;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(value >> shift & 255U);
  return bytes;
}

// The PNG with another size in its header, checksum and all.
std::string ForgedPng(std::string png, std::uint32_t side) {
  png.replace(16, 8, BigEndian(side) + BigEndian(side));
  png.replace(29, 4, BigEndian(Crc(png.substr(12, 17))));
  return png;
}

class BadInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WritePicture(Photo(), test::PhotoLikePicture(60, 40, 3, 8, 1));
    before_ = Bytes(Photo());
  }
  void TearDown() override { EXPECT_EQ(Bytes(Photo()), before_) << "the photograph was changed"; }

  [[nodiscard]] std::filesystem::path Photo() const { return folder_ / "photo.png"; }

  [[nodiscard]] ProgramRun Command(const std::vector<std::string>& arguments) const {
    ProgramRun run;
    run.arguments = {MIRELLON_CLI};
    run.arguments.insert(run.arguments.end(), arguments.begin(), arguments.end());
    run.folder = folder_.path();
    run.environment = {"MIRELLON_CONFIG_HOME=" + (settings_ / "home").string()};
    return run;
  }
  [[nodiscard]] ProgramResult Run(const std::vector<std::string>& arguments) const {
    return test::Run(Command(arguments));
  }

  [[nodiscard]] std::vector<std::string> Listing() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      names.push_back(entry.path());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // The run fails with that status and one line about that name on standard error, and leaves nothing.
  void ExpectFailure(const ProgramRun& run, int status, const std::string& name) const {
    const std::vector<std::string> listing = Listing();
    const ProgramResult result = test::Run(run);
    EXPECT_EQ(result.status, status) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_TRUE(result.errors.starts_with("mirellon-cli: '" + name + "': ")) << result.errors;
    EXPECT_GT(result.errors.size(), name.size() + 20) << "no cause";
    EXPECT_EQ(Listing(), listing);
  }

  test::TemporaryFolder folder_;
  test::TemporaryFolder settings_;

 private:
  std::string before_;
};

TEST_F(BadInputTest, InputsThatCannotBeReadGiveThree) {
  std::filesystem::create_directory(folder_ / "folder.jpg");
  WriteBytes(folder_ / "empty.jpg", "");
  WriteBytes(folder_ / "text.jpg", "This is no photograph, whatever its name says.\n");
  WriteBytes(folder_ / "short.png", Bytes(Photo()).substr(0, 60));
  WriteBytes(folder_ / "forged.png", ForgedPng(Bytes(Photo()), 60000));
  WriteForeignBitmap(folder_ / "rgba.png", FIF_PNG, 32);
  WriteForeignBitmap(folder_ / "palette.gif", FIF_GIF, 8);
  ASSERT_EQ(mkfifo((folder_ / "pipe.jpg").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere.png", folder_ / "dangling.png");
  std::vector<std::string> names = {"missing.jpg", "folder.jpg", "empty.jpg",   "text.jpg", "short.png",
                                    "forged.png",  "rgba.png",   "palette.gif", "pipe.jpg", "dangling.png"};
  if (geteuid() != 0) {
    WriteBytes(folder_ / "closed.png", Bytes(Photo()));
    std::filesystem::permissions(folder_ / "closed.png", std::filesystem::perms::none);
    names.emplace_back("closed.png");
  }
  for (const std::string& name : names) {
    ExpectFailure(Command({"denoise", name, "out.png"}), 3, name);
    ExpectFailure(Command({"info", name}), 3, name);
    ExpectFailure(Command({"info", "--json", name}), 3, name);
  }
}

TEST_F(BadInputTest, TargetsThatCannotBeWrittenGiveFour) {
  WriteBytes(folder_ / "there.png", "precious");
  std::filesystem::create_directory(folder_ / "folder.png");
  WritePicture(folder_ / "deep.png", test::PhotoLikePicture(20, 20, 1, 16, 2));
  ExpectFailure(Command({"denoise", "photo.png", "no/such/out.png"}), 4, "no/such/out.png");
  ExpectFailure(Command({"denoise", "photo.png", "there.png"}), 4, "there.png");
  std::filesystem::create_directory(folder_ / "folder");
  for (const char* folder : {"folder.png", "folder", "folder/", "new/", "."}) {
    ExpectFailure(Command({"denoise", "photo.png", folder, "--overwrite"}), 4, folder);
  }
  std::filesystem::create_symlink("/dev/full", folder_ / "device.png");
  ExpectFailure(Command({"denoise", "photo.png", "device.png", "--overwrite"}), 4, "device.png");
  ExpectFailure(Command({"denoise", "deep.png", "out.jpg"}), 4, "out.jpg");
  EXPECT_EQ(Bytes(folder_ / "there.png"), "precious");
  if (geteuid() != 0) {
    std::filesystem::create_directory(folder_ / "locked");
    std::filesystem::permissions(folder_ / "locked",
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    ExpectFailure(Command({"denoise", "photo.png", "locked/out.png"}), 4, "locked/out.png");
  }
}

TEST_F(BadInputTest, TheSourceIsNeverTheTarget) {
  std::filesystem::create_symlink("photo.png", folder_ / "soft.png");
  std::filesystem::create_hard_link(Photo(), folder_ / "hard.png");
  const std::string names[] = {"photo.png", "./photo.png", "soft.png", "hard.png", Photo().string()};
  for (const std::string& name : names) {
    ExpectFailure(Command({"denoise", "photo.png", name, "--overwrite"}), 4, name);
    ExpectFailure(Command({"denoise", "soft.png", name, "--overwrite"}), 4, name);
  }
  // Nor under a name that the result would not have.
  std::filesystem::create_hard_link(Photo(), folder_ / "hard.gif");
  ExpectFailure(Command({"denoise", "hard.gif", "hard.gif"}), 4, "hard.gif");
}

TEST_F(BadInputTest, AFileThatMayNotGrowIsNotLeft) {
  WritePicture(folder_ / "large.bmp", test::RandomPicture(200, 200, 3, 8, 3));
  // A limit on the size of files is met by every program in the same way as a full disk.
  for (const char* target : {"out.png", "out.tif", "out.bmp", "out.jpg"}) {
    ProgramRun run = Command({"denoise", "large.bmp", target, "--no-metadata", "--quality", "low"});
    run.fileSizeLimit = 8000;
    ExpectFailure(run, 4, target);
  }
}

TEST_F(BadInputTest, AFullDiskOfItsOwnLeavesNoFileEither) {
  WritePicture(folder_ / "large.bmp", test::RandomPicture(200, 200, 3, 8, 3));
  const std::filesystem::path disk = folder_ / "disk";
  std::filesystem::create_directory(disk);
  if (mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=32k") != 0)
    GTEST_SKIP() << "a disk of its own needs root";
  for (const char* target : {"disk/out.png", "disk/out.tif"}) {
    ExpectFailure(Command({"denoise", "large.bmp", target, "--no-metadata", "--quality", "low"}), 4, target);
  }
  EXPECT_EQ(umount(disk.c_str()), 0);
}

TEST_F(BadInputTest, OddNamesAreOnlyNames) {
  const std::string names[] = {"new\nline.png", "quo\"te's.png", "$HOME`id`.png", "-dash.png",   "--json.png",
                               "@list.png",     "%f%d.png",      "[a,b].png",     "caf\xe9.png", " .png"};
  for (const std::string& name : names) {
    WriteBytes(folder_ / name, Bytes(Photo()));
    const std::string out = name.substr(0, name.size() - 4) + "-out.png";
    const ProgramResult result = Run({"denoise", "--no-metadata", "--", name, out});
    EXPECT_EQ(result.status, 0) << name;
    EXPECT_EQ(result.errors + result.output, "") << name;
    EXPECT_TRUE(std::filesystem::exists(folder_ / out)) << name;
    // The same names in messages stay one line.
    EXPECT_EQ(Run({"denoise", "--", name, out}).status, 4);
    const ProgramResult refused = Run({"info", "--", name + "\n"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(std::count(refused.errors.begin(), refused.errors.end(), '\n'), 1);
  }
}

TEST_F(BadInputTest, ResultsThatCannotBePrintedGiveOne) {
  ProgramRun full = Command({"info", "photo.png", "--json"});
  full.standardOutput = "/dev/full";
  ProgramRun closed = Command({"info", "photo.png"});
  closed.closeStandardOutput = true;
  ProgramRun help = Command({"--help"});
  help.standardOutput = "/dev/full";
  for (const ProgramRun& run : {full, closed, help}) {
    const ProgramResult result = test::Run(run);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "mirellon-cli: cannot write to standard output\n");
  }
  // Without a word to print, a closed standard output does no harm, least of all to the picture.
  ProgramRun silent = Command({"denoise", "photo.png", "out.png", "--no-metadata"});
  silent.closeStandardOutput = true;
  EXPECT_EQ(test::Run(silent).status, 0);
  ASSERT_EQ(Run({"denoise", "photo.png", "again.png", "--no-metadata"}).status, 0);
  EXPECT_EQ(Bytes(folder_ / "out.png"), Bytes(folder_ / "again.png"));
}

TEST_F(BadInputTest, SignalsEndTheRunWithoutAFile) {
  WritePicture(folder_ / "large.bmp", test::RandomPicture(1600, 1400, 3, 8, 4));
  const std::vector<std::string> listing = Listing();
  const struct {
    int signal;
    int status;
  } cases[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
  for (const auto& c : cases) {
    ProgramRun run = Command({"denoise", "large.bmp", "out.bmp", "--quality", "superior", "--threads", "1",
                              "--progress", "always"});
    bool sent = false;
    run.watch = [&](const std::string& errors) {
      // The bar appears when denoising begins, long before it ends.
      if (sent || errors.find("denoising") == std::string::npos) return 0;
      sent = true;
      return c.signal;
    };
    const ProgramResult result = test::Run(run);
    EXPECT_FALSE(result.killed);
    EXPECT_EQ(result.status, c.status) << result.errors;
    EXPECT_TRUE(result.errors.ends_with("\rmirellon-cli: 'large.bmp': interrupted\n")) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(Listing(), listing);
  }
}

TEST_F(BadInputTest, TheInstructionSetCanBeForced) {
  ProgramRun run = Command({"denoise", "photo.png", "out.png", "--json", "--no-metadata"});
  run.environment.emplace_back("MIRELLON_SIMD=scalar");
  const ProgramResult forced = test::Run(run);
  EXPECT_EQ(forced.status, 0);
  EXPECT_NE(forced.output.find("\"simd\": \"scalar\""), std::string::npos);
  run.environment.back() = "MIRELLON_SIMD=mmx";
  const ProgramResult refused = test::Run(run);
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(refused.errors.starts_with("mirellon-cli: MIRELLON_SIMD: 'mmx' is not one of "))
      << refused.errors;
}

}  // namespace
}  // namespace mirellon
