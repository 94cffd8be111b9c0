#include "imageio/exif_summary.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imageio/image_files.h"
#include "imageio/load_image.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace {

using test::Little;
using test::TemporaryFolder;
using test::WriteBytes;

constexpr std::uint32_t kAscii = 2;
constexpr std::uint32_t kShort = 3;
constexpr std::uint32_t kLong = 4;
constexpr std::uint32_t kRational = 5;
constexpr std::uint32_t kSignedRational = 10;

struct Tag {
  std::uint32_t number;
  std::uint32_t type;
  std::uint32_t count;
  std::string value;
};

Tag Rational(std::uint32_t number, std::uint32_t n, std::uint32_t d, std::uint32_t type = kRational) {
  return {number, type, 1, Little(n, 4) + Little(d, 4)};
}
Tag Number(std::uint32_t number, std::uint32_t type, std::uint32_t value) {
  return {number, type, 1, Little(value, type == kShort ? 2 : 4)};
}
Tag Text(std::uint32_t number, const std::string& text) {
  return {number, kAscii, static_cast<std::uint32_t>(text.size()) + 1, text + '\0'};
}

// A directory at that offset, its larger values behind it.
std::string Directory(std::uint32_t offset, const std::vector<Tag>& tags) {
  std::string entries = Little(static_cast<std::uint32_t>(tags.size()), 2);
  std::string values;
  const auto behind = offset + 6 + static_cast<std::uint32_t>(tags.size()) * 12;
  for (const Tag& tag : tags) {
    entries += Little(tag.number, 2) + Little(tag.type, 2) + Little(tag.count, 4);
    if (tag.value.size() > 4) {
      entries += Little(behind + static_cast<std::uint32_t>(values.size()), 4);
      values += tag.value + std::string(tag.value.size() % 2, '\0');
    } else {
      entries += tag.value + std::string(4 - tag.value.size(), '\0');
    }
  }
  return entries + Little(0, 4) + values;
}

std::string ExifBlock(std::vector<Tag> image, const std::vector<Tag>& photo) {
  image.push_back(Number(0x8769, kLong, 0));
  const auto photoAt = static_cast<std::uint32_t>(8 + Directory(8, image).size());
  image.back() = Number(0x8769, kLong, photoAt);
  return std::string("II*\0", 4) + Little(8, 4) + Directory(8, image) + Directory(photoAt, photo);
}

// A small JPEG with that block put in.
std::string JpegWith(const std::string& block, const TemporaryFolder& folder) {
  EXPECT_TRUE(test::SaveBitmap(FIF_JPEG, test::NoiseBitmap(FIT_BITMAP, 16, 16, 24), folder / "base.jpg"));
  const std::string app1 = std::string("Exif\0\0", 6) + block;
  return test::ReadBytes(folder / "base.jpg")
      .insert(2, "\xFF\xE1" + test::Big(static_cast<std::uint32_t>(app1.size()) + 2, 2) + app1);
}

ExifSummary Read(const std::string& block, const TemporaryFolder& folder) {
  WriteBytes(folder / "with.jpg", JpegWith(block, folder));
  return ReadExifSummary(folder / "with.jpg");
}

std::string FullBlock() {
  return ExifBlock(
      {Text(0x010F, "NIKON CORPORATION  "), Text(0x0110, std::string(200, 'M'))},
      {Rational(0x829A, 10, 1250), Rational(0x829D, 28, 10), Number(0x8827, kShort, 400),
       Text(0x9003, "2004:01:02 14:26:41"), Number(0xA002, kLong, 3008), Number(0xA003, kShort, 2000)});
}

TEST(ExifSummaryTest, ReadsTheSevenTexts) {
  const TemporaryFolder folder;
  const ExifSummary summary = Read(FullBlock(), folder);
  EXPECT_EQ(summary.fNumber, L"f 10");
  EXPECT_EQ(summary.exposure, L"1/125 sec.");
  EXPECT_EQ(summary.iso, L"400");
  EXPECT_EQ(summary.dimensions, L"3008x2000");
  EXPECT_EQ(summary.dateTaken, L"2004:01:02 14:26:41");
  EXPECT_EQ(summary.make, L"NIKON CORPORATION  ");
  EXPECT_EQ(summary.model, std::wstring(127, 'M'));

  // The same block is a TIFF file of its own.
  WriteBytes(folder / "block.tif", FullBlock());
  EXPECT_EQ(ReadExifSummary(folder / "block.tif").iso, L"400");
}

TEST(ExifSummaryTest, OddValues) {
  const TemporaryFolder folder;
  // Only the low 16 bits count; a tag of a foreign type does not.
  ExifSummary summary = Read(
      ExifBlock({Text(0x010F, "Caf\xE9"), Text(0x0110, std::string("cut\0off", 7))},
                {Rational(0x829A, 0, 0, kSignedRational), Number(0x829D, kShort, 8),
                 Number(0x8827, kLong, 0x10064), Number(0xA002, kLong, 70000), Number(0xA003, kShort, 5)}),
      folder);
  EXPECT_EQ(summary.make, L"Caf\u00E9");
  EXPECT_EQ(summary.model, L"cut");
  EXPECT_EQ(summary.exposure, L"0/0 sec.");
  EXPECT_EQ(summary.fNumber, L"");
  EXPECT_EQ(summary.iso, L"100");
  EXPECT_EQ(summary.dimensions, L"4464x5");

  summary = Read(ExifBlock({}, {Number(0xA002, kLong, 3008)}), folder);
  EXPECT_EQ(summary.dimensions, L"");
  EXPECT_EQ(summary.make + summary.model + summary.iso + summary.dateTaken, L"");
}

TEST(ExifSummaryTest, NothingToReadGivesEmptyTexts) {
  const TemporaryFolder folder;
  WriteBytes(folder / "text.jpg", "not a picture");
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, test::NoiseBitmap(FIT_BITMAP, 5, 5, 8), folder / "plain.png"));
  for (const std::filesystem::path& path : {folder / "text.jpg", folder / "plain.png", folder / "missing",
                                            folder.path(), std::filesystem::path("-")}) {
    const ExifSummary summary = ReadExifSummary(path);
    EXPECT_EQ(summary.make + summary.dimensions, L"") << path;
  }
}

// Damaged blocks give some texts or none, and never keep the picture from loading.
TEST(ExifSummaryTest, SurvivesDamagedBlocks) {
  const TemporaryFolder folder;
  const std::string block = FullBlock();
  const std::string jpeg = JpegWith(block, folder);
  test::Random random(3);
  for (int i = 0; i < 300; ++i) {
    std::string damaged = jpeg;
    for (int flips = 0; flips < 6; ++flips) {
      const int place = 12 + random.Below(static_cast<int>(block.size()));
      damaged[static_cast<std::size_t>(place)] = static_cast<char>(random.Below(256));
    }
    WriteBytes(folder / "m.jpg", damaged);
    Document document;
    std::filesystem::path path = folder / "m.jpg";
    LoadReport report;
    EXPECT_FALSE(LoadImageFile(document, path, true, &report)) << report.cause;
    EXPECT_EQ(report.warning, "");
    for (const std::wstring& text : {document.exif.make, document.exif.model, document.exif.exposure}) {
      EXPECT_LT(text.size(), 128U);
    }
  }
}

}  // namespace

}  // namespace mirellon::imageio
