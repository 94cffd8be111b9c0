#include "imageio/png_shell.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imageio/image_files.h"

namespace mirellon::imageio {
namespace {

// A chunk whose checksum nobody reads.
std::string Chunk(const std::string& name, const std::string& data) {
  return test::Big(static_cast<std::uint32_t>(data.size()), 4) + name + data + "sum.";
}

class PngShellTest : public testing::Test {
 protected:
  // Noise enough for several chunks of pixels.
  void SetUp() override {
    ASSERT_FALSE(test::WritePicture(folder_ / "picture.png", test::RandomPicture(200, 90, 3, 8, 1)));
    ASSERT_FALSE(MakePngShell(folder_ / "picture.png", folder_ / "shell.png"));
    picture_ = test::ReadBytes(folder_ / "picture.png");
    shell_ = test::ReadBytes(folder_ / "shell.png");
    pixels_ = shell_.find("IDAT") - 4;
  }

  // Empty: refused.
  std::string Filled(const std::string& shell) {
    std::filesystem::remove(folder_ / "joined.png");
    test::WriteBytes(folder_ / "shell.png", shell);
    if (FillPngShell(folder_ / "picture.png", folder_ / "shell.png", folder_ / "joined.png")) return {};
    return test::ReadBytes(folder_ / "joined.png");
  }

  test::TemporaryFolder folder_;
  std::string picture_;
  std::string shell_;
  std::size_t pixels_ = 0;
};

TEST_F(PngShellTest, TakesThePixelsBetweenWhateverWasAdded) {
  EXPECT_LT(shell_.size(), 200U);
  EXPECT_EQ(Filled(shell_), picture_);
  const std::string before = Chunk("tEXt", "IDAT IEND");
  const std::string behind = Chunk("eXIf", std::string(100000, 'x'));
  std::string shell = shell_;
  shell.insert(pixels_ + 12, behind);
  shell.insert(pixels_, before);
  std::string expected = picture_;
  expected.insert(expected.size() - 12, behind);
  expected.insert(pixels_, before);
  EXPECT_EQ(Filled(shell), expected);
  EXPECT_TRUE(
      test::SamePicture(test::ReadPicture(folder_ / "joined.png"), test::RandomPicture(200, 90, 3, 8, 1)));
}

TEST_F(PngShellTest, RefusesShellsThatAreNotWholeOrOfAnotherPicture) {
  std::string wider = shell_;
  ++wider[19];
  std::string pixels = shell_;
  pixels.insert(pixels_ + 8, "x");
  pixels[pixels_ + 3] = 1;
  std::string longer = shell_;
  longer.insert(pixels_, "\x7F\xFF\xFF\xFFtEXt");
  const std::vector<std::string> shells = {
      "",     "x",   shell_.substr(0, pixels_), shell_.substr(0, shell_.size() - 1), shell_ + "x", wider,
      pixels, longer};
  for (std::size_t i = 0; i < shells.size(); ++i) EXPECT_EQ(Filled(shells[i]), "") << i;
}

TEST_F(PngShellTest, IsMadeOfWholePngFilesOnlyAndReplacesNothing) {
  const std::string jpeg(1000, '\xFF');
  for (const std::string& bytes :
       {std::string(), jpeg, picture_.substr(0, picture_.size() - 1), shell_.substr(0, 60)}) {
    test::WriteBytes(folder_ / "other.png", bytes);
    EXPECT_TRUE(MakePngShell(folder_ / "other.png", folder_ / "new.png")) << bytes.size();
  }
  EXPECT_TRUE(MakePngShell(folder_ / "picture.png", folder_ / "shell.png"));
  EXPECT_EQ(test::ReadBytes(folder_ / "shell.png"), shell_);
}

}  // namespace
}  // namespace mirellon::imageio
