// The real program on files, names and circumstances that it cannot like.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/child_process.h"
#include "imageio/image_files.h"
#include "support/test_pictures.h"

namespace mirellon {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

struct Outcome {
  int status;
  std::string output;
  std::string errors;
};

class BadInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(test::WritePicture(folder_ / "photo.png", test::PhotoLikePicture(60, 40, 3, 8, 1)));
    before_ = test::ReadBytes(folder_ / "photo.png");
  }
  void TearDown() override {
    EXPECT_EQ(test::ReadBytes(folder_ / "photo.png"), before_) << "the photograph changed";
  }

  // The program with these arguments, in the folder; `start` is what the shell does instead of just starting
  // it.
  [[nodiscard]] Outcome Run(const Arguments& arguments, const std::string& start = "exec \"$@\"") const {
    const std::string script = "exec 2>\"$1\"; export MIRELLON_CONFIG_HOME=\"$1.d\"; shift; " + start;
    const fs::path errors = aside_ / "errors";
    Arguments all = {"sh", "-c", script, "sh", errors.string(), MIRELLON_CLI};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const base::ChildResult result = base::RunChild(all, folder_.path(), nullptr);
    return {result.status, result.output, test::ReadBytes(errors)};
  }

  // The run fails with that status and one line about that name on standard error, and leaves nothing.
  void ExpectFailure(const Arguments& arguments, int status, const std::string& name,
                     const std::string& start = "exec \"$@\"") const {
    const std::size_t files = test::FilesIn(folder_.path());
    const Outcome outcome = Run(arguments, start);
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_TRUE(outcome.errors.starts_with("mirellon-cli: '" + name + "': ")) << outcome.errors;
    EXPECT_GT(outcome.errors.size(), name.size() + 20) << "no cause";
    EXPECT_EQ(test::FilesIn(folder_.path()), files);
  }

  test::TemporaryFolder folder_;
  test::TemporaryFolder aside_;
  std::string before_;
};

TEST_F(BadInputTest, InputsThatCannotBeReadGiveThree) {
  fs::create_directory(folder_ / "folder.jpg");
  test::WriteBytes(folder_ / "empty.jpg", "");
  test::WriteBytes(folder_ / "text.jpg", "This is no photograph, whatever its name says.\n");
  test::WriteBytes(folder_ / "forged.png", test::ForgedPng(60000, 60000));
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, test::NoiseBitmap(FIT_BITMAP, 9, 7, 32), folder_ / "rgba.png"));
  ASSERT_TRUE(test::SaveBitmap(FIF_GIF, test::PaletteBitmap(9, 7), folder_ / "palette.gif"));
  for (const char* name :
       {"missing.jpg", "folder.jpg", "empty.jpg", "text.jpg", "forged.png", "rgba.png", "palette.gif"}) {
    ExpectFailure({"denoise", name, "out.png"}, 3, name);
    ExpectFailure({"info", "--json", name}, 3, name);
  }
}

TEST_F(BadInputTest, TargetsThatCannotBeWrittenGiveFour) {
  test::WriteBytes(folder_ / "there.png", "precious");
  ASSERT_FALSE(test::WritePicture(folder_ / "deep.png", test::PhotoLikePicture(20, 20, 1, 16, 2)));
  ExpectFailure({"denoise", "photo.png", "there.png"}, 4, "there.png");
  EXPECT_EQ(test::ReadBytes(folder_ / "there.png"), "precious");
  ExpectFailure({"denoise", "deep.png", "out.jpg"}, 4, "out.jpg");
  fs::create_directory(folder_ / "folder.png");
  fs::create_directory(folder_ / "folder");
  for (const char* name : {"no/out.png", "folder.png", "folder", "folder/", "new/", "."}) {
    ExpectFailure({"denoise", "photo.png", name, "--overwrite"}, 4, name);
  }
}

TEST_F(BadInputTest, TheSourceIsNeverTheTarget) {
  fs::create_symlink("photo.png", folder_ / "soft.png");
  for (const char* name : {"hard.png", "hard.gif"})
    fs::create_hard_link(folder_ / "photo.png", folder_ / name);
  for (const char* name : {"photo.png", "./photo.png", "soft.png", "hard.png", "hard.gif"}) {
    ExpectFailure({"denoise", "photo.png", name, "--overwrite"}, 4, name);
    ExpectFailure({"denoise", "soft.png", name, "--overwrite"}, 4, name);
  }
}

// A limit on the size of files is met as a full disk is, which two of the encoders call a success.
TEST_F(BadInputTest, AFileThatMayNotGrowLeavesTheOldOne) {
  ASSERT_FALSE(test::WritePicture(folder_ / "large.bmp", test::RandomPicture(200, 200, 3, 8, 3)));
  for (const char* name : {"out.png", "out.tif", "out.bmp", "out.jpg"}) {
    test::WriteBytes(folder_ / name, "precious");
    ExpectFailure({"denoise", "large.bmp", name, "--no-metadata", "--quality", "low", "--overwrite"}, 4, name,
                  "ulimit -f 16; exec \"$@\"");
    EXPECT_EQ(test::ReadBytes(folder_ / name), "precious");
  }
}

TEST_F(BadInputTest, OddNamesAreOnlyNames) {
  const char* const names[] = {"new\nline.png", "quo\"te's.png", "$HOME`id`.png", "-dash.png",
                               "--json.png",    "@list.png",     "%f%d.png",      "{}.png",
                               "!c.png",        "[a,b].png",     "caf\xe9.png",   " .png"};
  for (const std::string name : names) {
    test::WriteBytes(folder_ / name, before_);
    const Outcome done = Run({"denoise", "--no-metadata", "--", name, name + ".out.png"});
    EXPECT_EQ(done.status, 0) << name;
    EXPECT_EQ(done.errors + done.output, "") << name;
    EXPECT_TRUE(fs::exists(folder_ / (name + ".out.png"))) << name;
    const Outcome refused = Run({"info", "--", name + "\n"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(std::count(refused.errors.begin(), refused.errors.end(), '\n'), 1);
  }
}

TEST_F(BadInputTest, ResultsThatCannotBePrintedGiveOne) {
  for (const char* start : {"exec \"$@\" >/dev/full", "exec \"$@\" >&-"}) {
    for (const Arguments& arguments : {Arguments{"info", "photo.png", "--json"}, Arguments{"--help"}}) {
      const Outcome outcome = Run(arguments, start);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.errors, "mirellon-cli: cannot write to standard output\n");
    }
  }
  // Without a word to print, a closed standard output does no harm, least of all to the picture.
  EXPECT_EQ(Run({"denoise", "photo.png", "out.png", "--no-metadata"}, "exec \"$@\" >&-").status, 0);
  EXPECT_EQ(Run({"denoise", "photo.png", "again.png", "--no-metadata"}).status, 0);
  EXPECT_EQ(test::ReadBytes(folder_ / "out.png"), test::ReadBytes(folder_ / "again.png"));
}

// Sent when the bar is there, which is when denoising begins, long before it ends.
TEST_F(BadInputTest, SignalsEndTheRunWithoutAFile) {
  ASSERT_FALSE(test::WritePicture(folder_ / "large.bmp", test::RandomPicture(1600, 1400, 3, 8, 4)));
  const std::string errors = (aside_ / "errors").string();
  for (const auto& [signal, status] : {std::pair{"INT", 130}, {"TERM", 143}, {"HUP", 129}}) {
    const Outcome outcome = Run({"denoise", "large.bmp", "out.bmp", "--quality", "superior", "--threads", "1",
                                 "--progress", "always"},
                                std::string("\"$@\" & until grep -q denoising '") + errors +
                                    "'; do :; done; kill -" + signal + " $!; wait $!");
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    EXPECT_TRUE(outcome.errors.ends_with("\rmirellon-cli: 'large.bmp': interrupted\n")) << outcome.errors;
    EXPECT_EQ(test::FilesIn(folder_.path()), 2U);
  }
}

TEST_F(BadInputTest, TheInstructionSetCanBeForced) {
  const Arguments arguments = {"denoise", "photo.png", "out.png", "--json", "--no-metadata"};
  const Outcome forced = Run(arguments, "MIRELLON_SIMD=scalar exec \"$@\"");
  EXPECT_NE(forced.output.find("\"simd\": \"scalar\""), std::string::npos) << forced.errors;
  const Outcome refused = Run(arguments, "MIRELLON_SIMD=mmx exec \"$@\"");
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(refused.errors.starts_with("mirellon-cli: MIRELLON_SIMD: 'mmx' is not one of "));
}

}  // namespace mirellon
