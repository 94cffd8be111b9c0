#include "imageio/exif_summary.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>

#include "base/file_descriptor.h"
#include "base/text.h"
#include "imageio/exif_texts.h"
#include "imageio/library_support.h"
#include "imageio/photo_metadata.h"

namespace mirellon::imageio {

namespace {

using Bytes = std::vector<Exiv2::byte>;

// A tag's value as it would lie in a little-endian memory, when its type is one of those given.
template <typename... Types>
std::optional<Bytes> ValueOf(const Exiv2::ExifData& data, const char* key, Types... types) {
  const auto found = data.findKey(Exiv2::ExifKey(key));
  if (found == data.end()) return std::nullopt;
  const Exiv2::TypeId type = found->typeId();
  if (((type != types) && ...)) return std::nullopt;
  Bytes bytes(static_cast<std::size_t>(std::max<long>(found->size(), 0)));
  if (!bytes.empty()) found->copy(bytes.data(), Exiv2::littleEndian);
  return bytes;
}

std::wstring Text(const Exiv2::ExifData& data, const char* key) {
  const auto bytes = ValueOf(data, key, Exiv2::asciiString, Exiv2::unsignedByte, Exiv2::undefined);
  if (!bytes) return {};
  const std::string narrow(bytes->begin(), std::find(bytes->begin(), bytes->end(), Exiv2::byte{0}));
  return base::CutText(base::WideFromNarrow(narrow), base::kShortTextCapacity);
}

std::optional<ExifRational> Rational(const Exiv2::ExifData& data, const char* key) {
  const auto bytes = ValueOf(data, key, Exiv2::unsignedRational, Exiv2::signedRational);
  if (!bytes || bytes->size() < 8) return std::nullopt;
  return ExifRational{Exiv2::getULong(bytes->data(), Exiv2::littleEndian),
                      Exiv2::getULong(bytes->data() + 4, Exiv2::littleEndian)};
}

// The first 16 bits, also of a 32-bit number.
std::optional<std::uint16_t> Short(const Exiv2::ExifData& data, const char* key) {
  const auto bytes =
      ValueOf(data, key, Exiv2::unsignedShort, Exiv2::signedShort, Exiv2::unsignedLong, Exiv2::signedLong);
  if (!bytes || bytes->size() < 2) return std::nullopt;
  return Exiv2::getUShort(bytes->data(), Exiv2::littleEndian);
}

ExifSummary SummaryOf(const Exiv2::ExifData& data) {
  ExifSummary summary;
  if (const auto value = Rational(data, "Exif.Photo.FNumber")) summary.fNumber = FNumberText(*value);
  if (const auto value = Rational(data, "Exif.Photo.ExposureTime")) summary.exposure = ExposureText(*value);
  if (const auto value = Short(data, "Exif.Photo.ISOSpeedRatings")) summary.iso = IsoText(*value);
  summary.dimensions = DimensionsText(Short(data, "Exif.Photo.PixelXDimension").value_or(0),
                                      Short(data, "Exif.Photo.PixelYDimension").value_or(0));
  summary.dateTaken = Text(data, "Exif.Photo.DateTimeOriginal");
  summary.make = Text(data, "Exif.Image.Make");
  summary.model = Text(data, "Exif.Image.Model");
  return summary;
}

int OrientationOf(const Exiv2::ExifData& data) {
  const int value = Short(data, "Exif.Image.Orientation").value_or(1);
  return value >= 1 && value <= 8 ? value : 1;
}

// Reads what there is. A profile that is cut off need not cost the photograph the rest of its data: true = it
// is, and whatever was read before it is there.
bool ReadWithoutProfileErrors(Exiv2::Image& image) {
  try {
    image.readMetadata();
  } catch (const Exiv2::Error& error) {
    if (error.code() != Exiv2::kerInvalidIccProfile) throw;
    return true;
  }
  return false;
}

void TakeProfile(Exiv2::Image& image, PhotoMetadata& metadata) {
  if (metadata.profileRefused || !image.iccProfileDefined()) return;
  const Exiv2::DataBuf& profile = *image.iccProfile();
  const auto size = static_cast<std::size_t>(std::max<long>(profile.size_, 0));
  metadata.profileRefused = size > kMostProfileBytes;
  if (!metadata.profileRefused) metadata.profile.assign(reinterpret_cast<const char*>(profile.pData_), size);
}

}  // namespace

PhotoMetadata ReadPhotoMetadata(const std::filesystem::path& file) {
  PrepareLibraries();
  try {
    base::FileDescriptor regular;
    if (base::OpenForReading(file, regular) != 0) return {};
    // Only an absolute name is safe from being taken for a web address or standard input.
    const auto image = Exiv2::ImageFactory::open(std::filesystem::absolute(file).string());
    PhotoMetadata metadata;
    metadata.profileRefused = ReadWithoutProfileErrors(*image);
    metadata.exif = SummaryOf(image->exifData());
    metadata.orientation = OrientationOf(image->exifData());
    TakeProfile(*image, metadata);
    return metadata;
  } catch (const std::exception&) {
    return {};
  }
}

ExifSummary ReadExifSummary(const std::filesystem::path& file) {
  return ReadPhotoMetadata(file).exif;
}

}  // namespace mirellon::imageio
