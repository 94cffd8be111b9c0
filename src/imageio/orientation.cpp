#include "imageio/orientation.h"

#include <exception>

#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>

#include "base/file_descriptor.h"
#include "imageio/library_support.h"

namespace mirellon::imageio {

namespace {

constexpr long kMost = 8;

int OrientationOf(const Exiv2::ExifData& data) {
  const auto found = data.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
  if (found == data.end() || found->count() != 1) return kUpright;
  const long value = found->toLong();
  return value >= kUpright && value <= kMost ? static_cast<int>(value) : kUpright;
}

}  // namespace

int ReadOrientation(const std::filesystem::path& file) {
  PrepareLibraries();
  try {
    base::FileDescriptor regular;
    if (base::OpenForReading(file, regular) != 0) return kUpright;
    // Only an absolute name is safe from being taken for a web address or standard input.
    const auto image = Exiv2::ImageFactory::open(std::filesystem::absolute(file).string());
    image->readMetadata();
    return OrientationOf(image->exifData());
  } catch (const std::exception&) {
    return kUpright;
  }
}

}  // namespace mirellon::imageio
