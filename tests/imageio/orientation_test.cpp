#include "imageio/orientation.h"

#include <string>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include "imageio/image_files.h"

namespace mirellon::imageio {
namespace {

TEST(OrientationTest, IsReadFromTheTag) {
  const test::TemporaryFolder folder;
  struct Case {
    const char* name;
    Exiv2::TypeId type;
    std::string value;
    int expected;
  };
  for (const Case& row :
       {Case{"a.jpg", Exiv2::unsignedShort, "6", 6}, Case{"b.tif", Exiv2::unsignedShort, "8", 8},
        Case{"c.png", Exiv2::unsignedShort, "3", 3}, Case{"d.jpg", Exiv2::unsignedShort, "0", 1},
        Case{"e.jpg", Exiv2::unsignedShort, "9", 1}, Case{"f.jpg", Exiv2::unsignedLong, "5", 5},
        Case{"g.jpg", Exiv2::unsignedShort, "6 6", 1}, Case{"h.jpg", Exiv2::asciiString, "top", 1}}) {
    const auto file = folder / row.name;
    ASSERT_FALSE(test::WritePicture(file, test::ConstantPicture(20, 20, 3, 8, 50)));
    EXPECT_EQ(ReadOrientation(file), 1) << row.name;
    const auto image = Exiv2::ImageFactory::open(file.string());
    image->readMetadata();
    const auto value = Exiv2::Value::create(row.type);
    ASSERT_EQ(value->read(row.value), 0);
    image->exifData()["Exif.Image.Orientation"] = *value;
    image->writeMetadata();
    EXPECT_EQ(ReadOrientation(file), row.expected) << row.name;
  }
  EXPECT_EQ(ReadOrientation(folder / "missing.jpg"), 1);
  EXPECT_EQ(ReadOrientation(folder.path()), 1);
}

}  // namespace
}  // namespace mirellon::imageio
