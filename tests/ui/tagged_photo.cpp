#include "ui/tagged_photo.h"

#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <gtest/gtest.h>
#include <lcms2.h>

#include "imageio/save_image.h"

namespace mirellon::test {

std::string WideProfile() {
  const cmsCIExyY white = {0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};
  cmsToneCurve* curve = cmsBuildGamma(nullptr, 2.2);
  cmsToneCurve* curves[] = {curve, curve, curve};
  cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsFreeToneCurve(curve);
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::string bytes(size, '\0');
  EXPECT_NE(cmsSaveProfileToMem(profile, bytes.data(), &size), 0);
  cmsCloseProfile(profile);
  return bytes;
}

void WriteTaggedPhoto(const std::filesystem::path& file, const picture::SBxPicBuf& picture, int orientation,
                      const std::string& profile) {
  ASSERT_FALSE(imageio::WriteImageFile(picture, file, {}, 95, {.metadata = false}));
  const auto image = Exiv2::ImageFactory::open(file.string());
  image->readMetadata();
  image->exifData()["Exif.Image.Orientation"] = static_cast<std::uint16_t>(orientation);
  if (!profile.empty()) {
    Exiv2::DataBuf bytes(reinterpret_cast<const Exiv2::byte*>(profile.data()),
                         static_cast<long>(profile.size()));
    image->setIccProfile(bytes, false);
  }
  image->writeMetadata();
}

void WriteTags(const std::filesystem::path& file, const std::map<std::string, std::string>& tags) {
  const auto image = Exiv2::ImageFactory::open(file.string());
  image->readMetadata();
  for (const auto& [name, value] : tags) image->exifData()[name] = value;
  image->writeMetadata();
}

std::string TagOf(const std::filesystem::path& file, const std::string& name) {
  const auto image = Exiv2::ImageFactory::open(file.string());
  image->readMetadata();
  const auto found = image->exifData().findKey(Exiv2::ExifKey(name));
  return found == image->exifData().end() ? std::string() : found->toString();
}

}  // namespace mirellon::test
