#include "imageio/png_shell.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/file_descriptor.h"

namespace mirellon::imageio {

namespace {

using base::FileDescriptor;

constexpr std::size_t kSignatureSize = 8;
constexpr std::size_t kHeaderSize =
    kSignatureSize + 25;  // with the first chunk, which tells the kind of picture
constexpr std::size_t kMostHead = std::size_t{1} << 20U;   // before a picture's pixels, as we encode it
constexpr std::size_t kMostShell = std::size_t{1} << 28U;  // with all metadata
constexpr std::size_t kPiece = std::size_t{1} << 20U;

// Chunks: a length, a name, so many bytes, a checksum.
constexpr std::size_t kFrame = 12;
constexpr std::string_view kNoPixels("\0\0\0\0IDAT\x35\xAF\x06\x1E", kFrame);
constexpr std::string_view kEnd("\0\0\0\0IEND\xAE\x42\x60\x82", kFrame);

std::uint32_t LengthAt(std::string_view bytes, std::size_t place) {
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < 4; ++i) length = length << 8U | static_cast<std::uint8_t>(bytes[place + i]);
  return length;
}

// Where the first chunk of that name begins, if whole chunks lead there.
std::optional<std::size_t> FindChunk(std::string_view bytes, std::string_view name) {
  std::size_t place = kSignatureSize;
  while (place + kFrame <= bytes.size()) {
    if (bytes.substr(place + 4, 4) == name) return place;
    const std::uint64_t next = std::uint64_t{place} + LengthAt(bytes, place) + kFrame;
    if (next > bytes.size()) return {};
    place = static_cast<std::size_t>(next);
  }
  return {};
}

// As many of `size` bytes as there are; empty after an error.
std::string ReadAt(const FileDescriptor& file, std::uint64_t offset, std::size_t size) {
  std::string bytes(size, '\0');
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t got =
        pread(file.get(), bytes.data() + filled, size - filled, static_cast<off_t>(offset + filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return {};
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

// True = failed.
bool WriteAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return true;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return false;
}

FileDescriptor OpenNew(const std::filesystem::path& path) {
  return FileDescriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
}

// An encoded picture: what comes before its pixels, and where those lie.
struct Picture {
  FileDescriptor file;
  std::string head;
  std::uint64_t pixelsEnd = 0;
};

// True = failed.
bool OpenPicture(const std::filesystem::path& path, Picture& picture) {
  struct stat status {};
  if (base::OpenForReading(path, picture.file) != 0 || fstat(picture.file.get(), &status) != 0) return true;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  picture.head = ReadAt(picture.file, 0, kMostHead);
  const auto pixels = FindChunk(picture.head, "IDAT");
  if (!pixels || *pixels < kHeaderSize || size < *pixels + 2 * kFrame) return true;
  picture.head.resize(*pixels);
  picture.pixelsEnd = size - kFrame;
  return ReadAt(picture.file, picture.pixelsEnd, kFrame) != kEnd;
}

// True = failed.
bool CopyPixels(const Picture& picture, const FileDescriptor& to) {
  std::uint64_t place = picture.head.size();
  while (place < picture.pixelsEnd) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, picture.pixelsEnd - place));
    const std::string piece = ReadAt(picture.file, place, size);
    if (piece.size() != size || WriteAll(to, piece)) return true;
    place += size;
  }
  return false;
}

// Where the empty pixels of a shell lie that is whole and begins as the picture does.
std::optional<std::size_t> PlaceForPixels(std::string_view shell, std::string_view head) {
  if (shell.substr(0, kHeaderSize) != head.substr(0, kHeaderSize)) return {};
  const auto pixels = FindChunk(shell, "IDAT");
  if (!pixels || shell.substr(*pixels, kFrame) != kNoPixels) return {};
  const auto end = FindChunk(shell, "IEND");
  if (!end || shell.substr(*end) != kEnd) return {};
  return pixels;
}

}  // namespace

bool MakePngShell(const std::filesystem::path& picture, const std::filesystem::path& shell) {
  Picture whole;
  if (OpenPicture(picture, whole)) return true;
  FileDescriptor file = OpenNew(shell);
  return !file.valid() || WriteAll(file, whole.head) || WriteAll(file, kNoPixels) || WriteAll(file, kEnd) ||
         file.Close() != 0;
}

bool FillPngShell(const std::filesystem::path& picture, const std::filesystem::path& shell,
                  const std::filesystem::path& joined) {
  Picture whole;
  FileDescriptor tagged;
  std::string content;
  if (OpenPicture(picture, whole) || base::OpenForReading(shell, tagged) != 0 ||
      base::ReadWhole(tagged.get(), kMostShell, content) != 0) {
    return true;
  }
  const std::string_view all = content;
  const auto pixels = PlaceForPixels(all, whole.head);
  if (!pixels) return true;
  FileDescriptor file = OpenNew(joined);
  return !file.valid() || WriteAll(file, all.substr(0, *pixels)) || CopyPixels(whole, file) ||
         WriteAll(file, all.substr(*pixels + kFrame)) || file.Close() != 0;
}

}  // namespace mirellon::imageio
