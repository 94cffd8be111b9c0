#include "imageio/decode_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <FreeImage.h>
#include <sys/stat.h>

#include "base/file_descriptor.h"
#include "imageio/file_headers.h"
#include "imageio/library_support.h"
#include "imageio/picture_kind.h"

namespace mirellon::imageio {

namespace {

using base::FileDescriptor;
using picture::PicBuf;

// Enough for a GIF's colour table and the extensions before its first frame.
constexpr std::size_t kHeadSize = std::size_t{1} << 20U;

bool Refuse(LoadReport& report, LoadStatus status, std::string cause) {
  report.status = status;
  report.cause = std::move(cause);
  return true;
}

struct StreamCloser {
  void operator()(std::FILE* stream) const { (void)std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

struct MemoryCloser {
  void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, MemoryCloser>;

unsigned ReadStream(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  return static_cast<unsigned>(std::fread(buffer, size, count, static_cast<std::FILE*>(handle)));
}
unsigned WriteNothing(void* /*buffer*/, unsigned /*size*/, unsigned /*count*/, fi_handle /*handle*/) {
  return 0;
}
int SeekStream(fi_handle handle, long offset, int origin) {
  return std::fseek(static_cast<std::FILE*>(handle), offset, origin);
}
long TellStream(fi_handle handle) {
  return std::ftell(static_cast<std::FILE*>(handle));
}

// A file on its way through the library: a stream, and for JPEG its content without metadata.
class Source {
 public:
  // True = failed, and reported.
  bool Open(const std::filesystem::path& file, LoadReport& report);
  bool FindFormat(const std::filesystem::path& file, LoadReport& report);
  // Null when the library gives up; `extraFlags` are added to the format's own.
  Bitmap Load(int extraFlags);
  // True = too large by its header, in a format whose size the library cannot tell, or not cheaply.
  bool RefuseBySize(LoadReport& report);
  // Inverts 16-bit grey that counts from white to black; the library tells of 8-bit grey only.
  void TurnRound(FIBITMAP* bitmap);
  // Whether the file ends before its pixels do, in a format whose decoder does not say so.
  enum class Extent { kWhole, kShort, kHardlyAny };
  [[nodiscard]] Extent FindExtent();

  [[nodiscard]] bool HasReadError() const { return std::ferror(stream_.get()) != 0; }
  [[nodiscard]] FREE_IMAGE_FORMAT format() const { return format_; }

 private:
  bool OpenJpeg(LoadReport& report);
  // Fewer bytes at the file's end.
  std::string ReadAt(std::uint64_t offset, std::size_t size);

  Stream stream_;
  std::uint64_t size_ = 0;
  FreeImageIO hooks_{ReadStream, WriteNothing, SeekStream, TellStream};
  FREE_IMAGE_FORMAT format_ = FIF_UNKNOWN;
  std::string jpeg_;
  Memory memory_;  // over jpeg_
};

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

bool Source::Open(const std::filesystem::path& file, LoadReport& report) {
  FileDescriptor descriptor;
  const int error = base::OpenForReading(file, descriptor);
  if (error != 0) return Refuse(report, StatusOfOpenError(error), CauseOfOpenError(error));
  struct stat status {};
  if (fstat(descriptor.get(), &status) != 0) {
    return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(errno));
  }
  size_ = static_cast<std::uint64_t>(status.st_size);
  if (size_ == 0) return Refuse(report, LoadStatus::kEmpty, "the file is empty");
  stream_ = Stream(fdopen(descriptor.get(), "rb"));
  if (!stream_) return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(errno));
  (void)descriptor.Release();  // the stream's from here on
  return false;
}

bool Source::FindFormat(const std::filesystem::path& file, LoadReport& report) {
  format_ = FreeImage_GetFileTypeFromHandle(&hooks_, stream_.get(), 0);
  if (HasReadError()) return Refuse(report, LoadStatus::kUnreadable, "the file cannot be read");
  if (format_ == FIF_UNKNOWN) format_ = FreeImage_GetFIFFromFilename(file.c_str());
  if (format_ == FIF_UNKNOWN) {
    return Refuse(report, LoadStatus::kUnknownFormat, "not a picture file that can be read");
  }
  report.format = FreeImage_GetFormatFromFIF(format_);
  if (FreeImage_FIFSupportsReading(format_) == FALSE) {
    return Refuse(report, LoadStatus::kUnknownFormat, report.format + " pictures cannot be read");
  }
  return format_ == FIF_JPEG && OpenJpeg(report);
}

bool Source::OpenJpeg(LoadReport& report) {
  // What the library's memory form can address.
  constexpr std::size_t kMostBytes = std::numeric_limits<std::int32_t>::max();
  std::string file;
  const int error = base::ReadWhole(fileno(stream_.get()), kMostBytes, file);
  if (error == EFBIG) return Refuse(report, LoadStatus::kTooLarge, "a JPEG file of more than 2 GB");
  if (error == ENOMEM) return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
  if (error != 0) return Refuse(report, LoadStatus::kUnreadable, base::ErrorText(error));
  jpeg_ = WithoutJpegMetadata(file);
  memory_ =
      Memory(FreeImage_OpenMemory(reinterpret_cast<BYTE*>(jpeg_.data()), static_cast<DWORD>(jpeg_.size())));
  if (!memory_) return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
  return false;
}

Bitmap Source::Load(int extraFlags) {
  if (format_ == FIF_JPEG) {
    FreeImage_SeekMemory(memory_.get(), 0, SEEK_SET);
    return Bitmap(FreeImage_LoadFromMemory(format_, memory_.get(), JPEG_ACCURATE | JPEG_CMYK | extraFlags));
  }
  std::rewind(stream_.get());
  const int flags = (format_ == FIF_TIFF ? TIFF_CMYK : 0) | extraFlags;
  return Bitmap(FreeImage_LoadFromHandle(format_, &hooks_, stream_.get(), flags));
}

std::string Source::ReadAt(std::uint64_t offset, std::size_t size) {
  std::string bytes(size, '\0');
  const bool sought = offset <= size_ && std::fseek(stream_.get(), static_cast<long>(offset), SEEK_SET) == 0;
  bytes.resize(sought ? std::fread(bytes.data(), 1, size, stream_.get()) : 0);
  return bytes;
}

bool Source::RefuseBySize(LoadReport& report) {
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

void Source::TurnRound(FIBITMAP* bitmap) {
  if (format_ != FIF_TIFF || FreeImage_GetImageType(bitmap) != FIT_UINT16) return;
  const auto read = [this](std::uint64_t offset, std::size_t size) { return ReadAt(offset, size); };
  if (FreeImage_GetColorType(bitmap) != FIC_MINISWHITE && IsMinIsWhiteTiff(read)) FreeImage_Invert(bitmap);
}

Source::Extent Source::FindExtent() {
  if (format_ != FIF_BMP) return Extent::kWhole;
  constexpr std::uint64_t kLeastShare =
      10;  // a tenth of a photograph is worth showing, less is a forged header
  const std::uint64_t needed = NeededBmpSize(ReadAt(0, kHeadSize)).value_or(0);
  if (needed / kLeastShare > size_) return Extent::kHardlyAny;
  return needed > size_ ? Extent::kShort : Extent::kWhole;
}

// The library gave no bitmap: finds out why.
bool ReportFailure(const Source& source, const LibraryMessages& messages, LoadReport& report) {
  if (source.HasReadError()) return Refuse(report, LoadStatus::kUnreadable, "the file cannot be read");
  if (messages.Contain("lack of memory") || messages.Contain("Memory allocation failed")) {
    return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the picture");
  }
  std::string cause = "damaged, or not a " + report.format + " picture at all";
  if (const std::string first = messages.First(); !first.empty()) cause += " (" + first + ")";
  return Refuse(report, LoadStatus::kDamaged, std::move(cause));
}

// Judges the picture by its header alone. True = refused, and reported.
bool RefuseByHeader(Source& source, LoadReport& report) {
  if (source.RefuseBySize(report)) return true;
  const bool asked = source.format() != FIF_JPEG && FreeImage_FIFSupportsNoPixels(source.format()) != FALSE;
  if (!asked) return false;
  const LibraryMessages messages;
  const Bitmap header = source.Load(FIF_LOAD_NOPIXELS);
  if (!header) return ReportFailure(source, messages, report);
  if (std::string refusal = SizeRefusal(header.get()); !refusal.empty()) {
    return Refuse(report, LoadStatus::kTooLarge, std::move(refusal));
  }
  if (source.FindExtent() == Source::Extent::kHardlyAny) {
    return Refuse(report, LoadStatus::kDamaged,
                  "the file ends too early; hardly any of the picture is there");
  }
  std::string refusal = KindRefusal(header.get());
  return !refusal.empty() && Refuse(report, LoadStatus::kUnsupportedKind, std::move(refusal));
}

std::string WarningOf(Source& source, const LibraryMessages& messages) {
  if (messages.Contain("Premature end") || source.FindExtent() == Source::Extent::kShort) {
    return "the file ends too early; a part of the picture is missing";
  }
  const std::string first = messages.First();
  return source.format() == FIF_JPEG && !first.empty() ? "the file is damaged (" + first + ")" : "";
}

PicBuf Decode(const std::filesystem::path& file, LoadReport& report) {
  Source source;
  if (source.Open(file, report) || source.FindFormat(file, report) || RefuseByHeader(source, report))
    return {};
  const LibraryMessages messages;
  const Bitmap bitmap = source.Load(0);
  if (!bitmap) {
    ReportFailure(source, messages, report);
    return {};
  }
  source.TurnRound(bitmap.get());
  PicBuf picture = ConvertBitmap(bitmap.get(), &report);
  if (!picture.empty()) report.warning = WarningOf(source, messages);
  return picture;
}

}  // namespace

PicBuf DecodeFile(const std::filesystem::path& file, LoadReport& report) {
  report = {};
  PrepareLibraries();
  try {
    return Decode(file, report);
  } catch (const std::bad_alloc&) {
    Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
    return {};
  }
}

}  // namespace mirellon::imageio
