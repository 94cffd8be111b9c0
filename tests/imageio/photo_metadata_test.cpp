#include "imageio/photo_metadata.h"

#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <gtest/gtest.h>

#include "imageio/image_files.h"
#include "imageio/load_image.h"

namespace mirellon::imageio {

// What only looks like a profile is enough: it is carried, not read.
std::string ProfileOf(std::size_t size) {
  return test::Big(static_cast<std::uint32_t>(size), 4) + std::string(size - 4, 'p');
}

void MakePhoto(const std::filesystem::path& file, int orientation, const std::string& profile) {
  const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(file.c_str());
  ASSERT_TRUE(test::SaveBitmap(format, test::NoiseBitmap(FIT_BITMAP, 16, 8, 24), file));
  const auto image = Exiv2::ImageFactory::open(file.string());
  image->readMetadata();
  image->exifData()["Exif.Image.Model"] = "M1";
  image->exifData()["Exif.Image.Orientation"] = static_cast<std::uint16_t>(orientation);
  if (!profile.empty()) {
    Exiv2::DataBuf bytes(reinterpret_cast<const Exiv2::byte*>(profile.data()),
                         static_cast<long>(profile.size()));
    image->setIccProfile(bytes, false);
  }
  image->writeMetadata();
}

TEST(PhotoMetadataTest, FindsOrientationAndProfileInEveryFormat) {
  const test::TemporaryFolder folder;
  for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
    SCOPED_TRACE(name);
    // In a JPEG the larger one takes several segments.
    for (const std::size_t size : {std::size_t{600}, std::size_t{200000}}) {
      const auto file = folder / name;
      MakePhoto(file, 6, ProfileOf(size));
      const PhotoMetadata metadata = ReadPhotoMetadata(file);
      EXPECT_EQ(metadata.orientation, 6);
      EXPECT_TRUE(metadata.profile == ProfileOf(size));
      EXPECT_FALSE(metadata.profileRefused);
      EXPECT_EQ(metadata.exif.model, L"M1");
      Document document;
      std::filesystem::path path = file;
      ASSERT_FALSE(LoadImageFile(document, path, true));
      EXPECT_EQ(document.source->width, 16) << "not turned";
      EXPECT_EQ(document.orientation, 6);
      EXPECT_TRUE(document.profile == ProfileOf(size));
    }
    MakePhoto(folder / name, 9, {});
    const PhotoMetadata plain = ReadPhotoMetadata(folder / name);
    EXPECT_EQ(plain.orientation, 1) << "there is no ninth";
    EXPECT_EQ(plain.profile, "");
    EXPECT_FALSE(plain.profileRefused);
  }
  EXPECT_EQ(ReadPhotoMetadata(folder / "none.jpg").orientation, 1);
}

TEST(PhotoMetadataTest, RefusesAbsurdProfiles) {
  const test::TemporaryFolder folder;
  const auto file = folder / "a.jpg";
  MakePhoto(file, 3, ProfileOf(kMostProfileBytes + 100));
  PhotoMetadata metadata = ReadPhotoMetadata(file);
  EXPECT_TRUE(metadata.profileRefused);
  EXPECT_EQ(metadata.profile, "");
  EXPECT_EQ(metadata.orientation, 3);

  // One that claims to be longer than its segment costs itself alone.
  MakePhoto(file, 3, ProfileOf(600));
  std::string bytes = test::ReadBytes(file);
  const std::size_t at = bytes.find("ICC_PROFILE");
  ASSERT_NE(at, std::string::npos);
  bytes.replace(at + 14, 4, test::Big(700, 4));
  test::WriteBytes(file, bytes);
  metadata = ReadPhotoMetadata(file);
  EXPECT_TRUE(metadata.profileRefused);
  EXPECT_EQ(metadata.profile, "");
  EXPECT_EQ(metadata.orientation, 3);
  EXPECT_EQ(metadata.exif.model, L"M1");
}

}  // namespace mirellon::imageio
