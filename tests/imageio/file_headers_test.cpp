#include "imageio/file_headers.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "imageio/image_files.h"

namespace mirellon::imageio {

std::string Segment(char code, const std::string& content) {
  return std::string("\xFF") + code + test::Big(static_cast<std::uint32_t>(content.size()) + 2, 2) + content;
}

TEST(FileHeadersTest, OnlyJpegMetadataGoes) {
  const std::string start = "\xFF\xD8";
  const std::string jfif = Segment('\xE0', std::string("JFIF\0\1\2", 7));
  const std::string adobe = Segment('\xEE', "Adobe12");
  const std::string table = Segment('\xDB', std::string(65, '\1'));
  const std::string scan = Segment('\xDA', "scan") + std::string("da\xFF\0ta\xFF\xD3", 8);
  const std::string trailer = "\xFF\xD9" + Segment('\xE1', "behind the picture");
  const std::string gone = Segment('\xE1', std::string("Exif\0\0II", 8)) + Segment('\xE0', "JFXX thumbnail") +
                           Segment('\xED', "Photoshop") + Segment('\xEE', "other") +
                           Segment('\xFE', "comment") + Segment('\xE2', "ICC_PROFILE");
  EXPECT_EQ(WithoutJpegMetadata(start + jfif + gone + adobe + gone + table + scan + trailer),
            start + jfif + adobe + table + scan + trailer);
  EXPECT_EQ(WithoutJpegMetadata(start + scan + Segment('\xE1', "between scans") + scan),
            start + scan + std::string("\xFF\xFE\0\2", 4) + scan);
  // Fill bytes go with their marker, stray bytes stay.
  EXPECT_EQ(WithoutJpegMetadata(start + "\xFF\xFF" + gone + "stray" + gone + "\xFF" + table + scan),
            start + "stray\xFF" + table + scan);
  // Damage: what cannot be followed is left to the decoder.
  for (const std::string& odd :
       {std::string(), start, start + "\xFF", start + "\xFF\xE1", std::string("no marker at all")}) {
    EXPECT_EQ(WithoutJpegMetadata(odd), odd);
  }
  EXPECT_EQ(WithoutJpegMetadata(start + std::string("\xFF\xE1\0\1\xFF\xE1\x10\0Exif", 12)), start);
}

TEST(FileHeadersTest, Sizes) {
  const auto frame = ReadJpegFrame(test::ForgedJpeg(300, 200));
  ASSERT_TRUE(frame);
  EXPECT_TRUE(frame->size.width == 300 && frame->size.height == 200 && frame->components == 3);

  const std::string gif = test::ForgedGif(10, 300);
  for (std::size_t size = 0; size <= gif.size(); ++size) {
    EXPECT_EQ(ReadGifSize(gif.substr(0, size)).has_value(), size >= 13);
  }
  EXPECT_EQ(ReadGifSize(gif)->height, 300U);

  EXPECT_EQ(NeededBmpSize(test::ForgedBmp(5, 3)), 54U + 3U * 16U);
  EXPECT_EQ(NeededBmpSize(test::ForgedBmp(5, static_cast<std::uint32_t>(-3))), 54U + 3U * 16U);
  EXPECT_FALSE(NeededBmpSize(test::ForgedBmp(5, 3).replace(30, 1, 1, '\1'))) << "compressed";
}

// Reads from a text as from a file.
ReadAt From(const std::string& file) {
  return [file](std::uint64_t offset, std::size_t size) {
    return file.substr(std::min<std::size_t>(offset, file.size()), size);
  };
}

// One entry of a directory, most significant byte first.
std::string Entry(std::uint32_t tag, std::uint32_t type, std::uint32_t value) {
  return test::Big(tag, 2) + test::Big(type, 2) + test::Big(1, 4) + test::Big(value, 4);
}

TEST(FileHeadersTest, MinIsWhiteTiff) {
  const std::string white = test::GreyTiff(1, 1, 16, 0, "ab");
  EXPECT_TRUE(IsMinIsWhiteTiff(From(white)));
  EXPECT_FALSE(IsMinIsWhiteTiff(From(test::GreyTiff(1, 1, 16, 1, "ab"))));
  EXPECT_FALSE(IsMinIsWhiteTiff(From(white.substr(0, 60))));
  const std::string motorola = "MM" + test::Big(42, 2) + test::Big(8, 4) + test::Big(1, 2) + Entry(262, 3, 9);
  EXPECT_TRUE(IsMinIsWhiteTiff(From(motorola)));
  const std::string large = "II" + test::Little(43, 2) + test::Little(8, 4) + test::Little(16, 4) +
                            test::Little(0, 4) + test::Little(1, 4) + test::Little(0, 4) +
                            test::Little(262, 2) + test::Little(3, 2) + test::Little(1, 4) +
                            std::string(16, '\0');
  EXPECT_TRUE(IsMinIsWhiteTiff(From(large)));
}

TEST(FileHeadersTest, OrdinaryTiff) {
  for (const int photometric : {0, 1, 2})
    EXPECT_TRUE(HoldsOrdinaryTiff(From(test::GreyTiff(1, 1, 16, photometric, "ab")))) << photometric;
  constexpr int kSensor = 32803;
  EXPECT_FALSE(HoldsOrdinaryTiff(From(test::GreyTiff(1, 1, 16, kSensor, "ab"))));
  const std::string thumbnail =
      "MM" + test::Big(42, 2) + test::Big(8, 4) + test::Big(2, 2) + Entry(254, 4, 1) + Entry(262, 3, 1 << 16);
  EXPECT_FALSE(HoldsOrdinaryTiff(From(thumbnail)));
}

TEST(FileHeadersTest, HidesTiffMetadata) {
  const std::string file = "MM" + test::Big(42, 2) + test::Big(8, 4) + test::Big(4, 2) + Entry(256, 4, 0) +
                           Entry(700, 4, 0) + Entry(34665, 4, 0) + Entry(34675, 4, 0) + test::Big(0, 4);
  const auto patches = TiffWithoutMetadata(From(file));
  ASSERT_EQ(patches.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(patches[i].offset, 10 + 12 * (i + 1) + 2);
    EXPECT_EQ(patches[i].bytes, test::Big(11, 2));
  }
}

}  // namespace mirellon::imageio
