#include "imageio/encode_picture.h"

#include <cstdint>
#include <cstdio>

#include "imageio/library_support.h"

namespace mirellon::imageio {

namespace {

using base::CheckedFile;

CheckedFile& FileOf(fi_handle handle) {
  return *static_cast<CheckedFile*>(handle);
}

unsigned ReadFile(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  std::size_t got = 0;
  const std::size_t wanted = static_cast<std::size_t>(size) * count;
  if (size == 0 || FileOf(handle).Read(buffer, wanted, got)) return 0;
  return static_cast<unsigned>(got / size);
}

unsigned WriteFile(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  return FileOf(handle).Write(buffer, static_cast<std::size_t>(size) * count) ? 0 : count;
}

int SeekFile(fi_handle handle, long offset, int origin) {
  CheckedFile& file = FileOf(handle);
  auto base = std::int64_t{0};
  if (origin == SEEK_CUR) base = static_cast<std::int64_t>(file.position());
  if (origin == SEEK_END) base = static_cast<std::int64_t>(file.size());
  if (base + offset < 0) return -1;
  file.Seek(static_cast<std::uint64_t>(base + offset));
  return 0;
}

long TellFile(fi_handle handle) {
  return static_cast<long>(FileOf(handle).position());
}

}  // namespace

bool EncodePicture(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, int flags, CheckedFile& file,
                   std::string& cause) {
  const LibraryMessages messages;
  FreeImageIO hooks{ReadFile, WriteFile, SeekFile, TellFile};
  const bool saved = FreeImage_SaveToHandle(format, bitmap, &hooks, &file, flags) != FALSE;
  // Two of the encoders call a full disk a success, so the file's own word counts too.
  if (saved && !file.Close() && file.size() > 0) return false;
  cause = messages.First();
  if (cause.empty()) cause = "the encoder failed";
  return true;
}

}  // namespace mirellon::imageio
