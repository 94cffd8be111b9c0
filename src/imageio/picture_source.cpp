#include "imageio/picture_source.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include <sys/stat.h>

#include "base/file_descriptor.h"
#include "imageio/picture_kind.h"

namespace mirellon::imageio {

namespace {

using base::FileDescriptor;

// Enough for a GIF's colour table and the extensions before its first frame.
constexpr std::size_t kHeadSize = std::size_t{1} << 20U;

bool Refuse(LoadReport& report, LoadStatus status, std::string cause) {
  report.status = status;
  report.cause = std::move(cause);
  return true;
}

LoadStatus StatusOfOpenError(int error) {
  if (error == ENOENT || error == ENOTDIR) return LoadStatus::kMissing;
  if (error == EISDIR || error == EINVAL) return LoadStatus::kNotAFile;
  return LoadStatus::kUnreadable;
}

std::string CauseOfOpenError(int error) {
  if (error == EISDIR) return "a folder, not a file";
  if (error == EINVAL) return "a device, pipe or socket, not a file";
  return base::ErrorText(error);
}

PictureSource& SourceOf(fi_handle handle) {
  return *static_cast<PictureSource*>(handle);
}

}  // namespace

unsigned PictureSource::ReadHook(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  if (size == 0) return 0;
  const std::size_t wanted = static_cast<std::size_t>(size) * count;
  return static_cast<unsigned>(SourceOf(handle).ReadPatched(static_cast<char*>(buffer), wanted) / size);
}

unsigned PictureSource::WriteHook(void* /*buffer*/, unsigned /*size*/, unsigned /*count*/,
                                  fi_handle /*handle*/) {
  return 0;
}

int PictureSource::SeekHook(fi_handle handle, long offset, int origin) {
  return std::fseek(SourceOf(handle).stream_.get(), offset, origin);
}

long PictureSource::TellHook(fi_handle handle) {
  return std::ftell(SourceOf(handle).stream_.get());
}

std::size_t PictureSource::ReadPatched(char* buffer, std::size_t size) {
  const auto start = static_cast<std::uint64_t>(std::ftell(stream_.get()));
  const std::size_t got = std::fread(buffer, 1, size, stream_.get());
  for (const FilePatch& patch : patches_) {
    for (std::size_t i = 0; i < patch.bytes.size(); ++i) {
      const std::uint64_t place = patch.offset + i;
      if (place >= start && place - start < got) buffer[place - start] = patch.bytes[i];
    }
  }
  return got;
}

std::string PictureSource::ReadAt(std::uint64_t offset, std::size_t size) {
  if (offset > size_ || std::fseek(stream_.get(), static_cast<long>(offset), SEEK_SET) != 0) return {};
  std::string bytes(std::min<std::uint64_t>(size, size_ - offset), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream_.get()));
  return bytes;
}

bool PictureSource::Open(const std::filesystem::path& file, LoadReport& report) {
  FileDescriptor descriptor;
  const int error = base::OpenForReading(file, descriptor);
  if (error != 0) return Refuse(report, StatusOfOpenError(error), CauseOfOpenError(error));
  struct stat status {};
  if (fstat(descriptor.get(), &status) != 0) {
    return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(errno));
  }
  size_ = static_cast<std::uint64_t>(status.st_size);
  if (size_ == 0) return Refuse(report, LoadStatus::kEmpty, "the file is empty");
  stream_.reset(fdopen(descriptor.get(), "rb"));
  if (!stream_) return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(errno));
  (void)descriptor.Release();  // the stream's from here on
  return false;
}

bool PictureSource::FindFormat(const std::filesystem::path& file, LoadReport& report) {
  format_ = FreeImage_GetFileTypeFromHandle(&hooks_, this, 0);
  if (HasReadError()) return Refuse(report, LoadStatus::kUnreadable, "the file cannot be read");
  if (format_ == FIF_UNKNOWN) format_ = FreeImage_GetFIFFromFilename(file.c_str());
  if (format_ == FIF_UNKNOWN) {
    return Refuse(report, LoadStatus::kUnknownFormat, "not a picture file that can be read");
  }
  const auto read = [this](std::uint64_t offset, std::size_t size) { return ReadAt(offset, size); };
  if (format_ == FIF_RAW && FreeImage_GetFIFFromFilename(file.c_str()) != FIF_RAW && HoldsOrdinaryTiff(read))
    format_ = FIF_TIFF;
  report.format = FreeImage_GetFormatFromFIF(format_);
  if (FreeImage_FIFSupportsReading(format_) == FALSE) {
    return Refuse(report, LoadStatus::kUnknownFormat, report.format + " pictures cannot be read");
  }
  if (format_ == FIF_TIFF) patches_ = TiffWithoutMetadata(read);
  return format_ == FIF_JPEG && OpenJpeg(report);
}

bool PictureSource::OpenJpeg(LoadReport& report) {
  // What the library's memory form can address.
  constexpr std::size_t kMostBytes = std::numeric_limits<std::int32_t>::max();
  std::string file;
  const int error = base::ReadWhole(fileno(stream_.get()), kMostBytes, file);
  if (error == EFBIG) return Refuse(report, LoadStatus::kTooLarge, "a JPEG file of more than 2 GB");
  if (error == ENOMEM) return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
  if (error != 0) return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(error));
  jpeg_ = WithoutJpegMetadata(file);
  memory_.reset(
      FreeImage_OpenMemory(reinterpret_cast<BYTE*>(jpeg_.data()), static_cast<DWORD>(jpeg_.size())));
  if (!memory_) return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
  return false;
}

bool PictureSource::RefuseBySize(LoadReport& report) {
  std::string refusal;
  if (format_ == FIF_GIF) {
    const auto size = ReadGifSize(ReadAt(0, kHeadSize));
    if (size) refusal = SizeRefusal(size->width, size->height, 8);
  } else if (format_ == FIF_JPEG) {
    const auto frame = ReadJpegFrame(jpeg_);
    if (frame) refusal = SizeRefusal(frame->size.width, frame->size.height, frame->components * 8);
  }
  return !refusal.empty() && Refuse(report, LoadStatus::kTooLarge, std::move(refusal));
}

Bitmap PictureSource::Load(int extraFlags) {
  if (format_ == FIF_JPEG) {
    FreeImage_SeekMemory(memory_.get(), 0, SEEK_SET);
    return Bitmap(FreeImage_LoadFromMemory(format_, memory_.get(), JPEG_ACCURATE | JPEG_CMYK | extraFlags));
  }
  std::rewind(stream_.get());
  const int flags = (format_ == FIF_TIFF ? TIFF_CMYK : 0) | extraFlags;
  return Bitmap(FreeImage_LoadFromHandle(format_, &hooks_, this, flags));
}

void PictureSource::TurnRound(FIBITMAP* bitmap) {
  if (format_ != FIF_TIFF || FreeImage_GetImageType(bitmap) != FIT_UINT16) return;
  const auto read = [this](std::uint64_t offset, std::size_t size) { return ReadAt(offset, size); };
  if (FreeImage_GetColorType(bitmap) != FIC_MINISWHITE && IsMinIsWhiteTiff(read)) FreeImage_Invert(bitmap);
}

PictureSource::Extent PictureSource::FindExtent() {
  if (format_ != FIF_BMP) return Extent::kWhole;
  constexpr std::uint64_t kLeastShare =
      10;  // a tenth of a photograph is worth showing, less is a forged header
  const std::uint64_t needed = NeededBmpSize(ReadAt(0, kHeadSize)).value_or(0);
  if (needed / kLeastShare > size_) return Extent::kHardlyAny;
  return needed > size_ ? Extent::kShort : Extent::kWhole;
}

}  // namespace mirellon::imageio
