#include "imageio/exif_summary.h"

#include <string>
#include <vector>

#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <gtest/gtest.h>

#include "imageio/image_files.h"
#include "imageio/load_image.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

struct Tag {
  const char* key;  // below "Exif."
  Exiv2::TypeId type;
  std::string value;
};

// A small picture file that holds these tags.
void MakeFile(const std::filesystem::path& file, const std::vector<Tag>& tags) {
  const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(file.c_str());
  ASSERT_TRUE(test::SaveBitmap(format, test::NoiseBitmap(FIT_BITMAP, 16, 16, 24), file));
  Exiv2::ExifData data;
  for (const Tag& tag : tags) {
    const auto value = Exiv2::Value::create(tag.type);
    ASSERT_EQ(value->read(tag.value), 0) << tag.key;
    data.add(Exiv2::ExifKey(std::string("Exif.") + tag.key), value.get());
  }
  const auto image = Exiv2::ImageFactory::open(file.string());
  image->setExifData(data);
  image->writeMetadata();
}

// The texts in the order of the fields.
std::vector<std::wstring> Texts(const std::filesystem::path& file) {
  const ExifSummary exif = ReadExifSummary(file);
  return {exif.fNumber, exif.exposure, exif.dimensions, exif.iso, exif.make, exif.model, exif.dateTaken};
}

TEST(ExifSummaryTest, ReadsTheSevenTextsAndSurvivesDamage) {
  const test::TemporaryFolder folder;
  for (const char* name : {"a.tif", "a.png", "a.jpg"}) {
    MakeFile(folder / name, {{"Image.Make", Exiv2::asciiString, "NIKON CORPORATION  "},
                             {"Image.Model", Exiv2::asciiString, std::string(200, 'M')},
                             {"Photo.ExposureTime", Exiv2::unsignedRational, "10/1250"},
                             {"Photo.FNumber", Exiv2::unsignedRational, "28/10"},
                             {"Photo.ISOSpeedRatings", Exiv2::unsignedShort, "400"},
                             {"Photo.DateTimeOriginal", Exiv2::asciiString, "2004:01:02 14:26:41"},
                             {"Photo.PixelXDimension", Exiv2::unsignedLong, "3008"},
                             {"Photo.PixelYDimension", Exiv2::unsignedShort, "2000"}});
    EXPECT_EQ(Texts(folder / name),
              (std::vector<std::wstring>{L"f 10", L"1/125 sec.", L"3008x2000", L"400", L"NIKON CORPORATION  ",
                                         std::wstring(127, 'M'), L"2004:01:02 14:26:41"}))
        << name;
  }
  // Damaged blocks give some texts or none, and never keep the picture from loading.
  std::filesystem::path path = folder / "a.jpg";
  const std::string jpeg = test::ReadBytes(path);
  const std::size_t block = jpeg.find("Exif") + 6;
  const std::size_t behind = jpeg.find("\xFF\xDB");  // quantisation tables
  ASSERT_TRUE(block < behind && behind < jpeg.size());
  test::Random random(3);
  for (int i = 0; i < 300; ++i) {
    test::WriteBytes(path, test::Damaged(jpeg, block, behind, random));
    Document document;
    LoadReport report;
    EXPECT_FALSE(LoadImageFile(document, path, true, &report)) << report.cause;
    EXPECT_EQ(report.warning, "");
    for (const std::wstring& text : Texts(path)) EXPECT_LT(text.size(), 128U);
  }
}

// Only the low 16 bits of numbers count, -1 is 4294967295, texts end at a NUL, and a tag of a foreign type
// does not count.
TEST(ExifSummaryTest, OddValues) {
  const test::TemporaryFolder folder;
  MakeFile(folder / "a.jpg", {{"Image.Make", Exiv2::asciiString, "Caf\xE9"},
                              {"Image.Model", Exiv2::asciiString, std::string("cut\0off", 7)},
                              {"Photo.ExposureTime", Exiv2::signedRational, "-1/30"},
                              {"Photo.FNumber", Exiv2::unsignedShort, "8"},
                              {"Photo.ISOSpeedRatings", Exiv2::unsignedLong, "65636"},
                              {"Photo.PixelXDimension", Exiv2::unsignedLong, "70000"},
                              {"Photo.PixelYDimension", Exiv2::unsignedShort, "5"}});
  EXPECT_EQ(Texts(folder / "a.jpg"),
            (std::vector<std::wstring>{L"", L"1/0 sec.", L"4464x5", L"100", L"Caf\u00E9", L"cut", L""}));
  MakeFile(folder / "b.jpg", {{"Photo.PixelXDimension", Exiv2::unsignedLong, "3008"}});
  EXPECT_EQ(Texts(folder / "b.jpg"), std::vector<std::wstring>(7));
}

}  // namespace mirellon::imageio
