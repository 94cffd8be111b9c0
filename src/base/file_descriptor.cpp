#include "base/file_descriptor.h"

#include <cerrno>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirellon::base {

namespace {

int ReadPieces(int descriptor, std::string& content) {
  std::size_t filled = 0;
  while (filled < content.size()) {
    const ssize_t got =
        pread(descriptor, content.data() + filled, content.size() - filled, static_cast<off_t>(filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) break;  // it shrank meanwhile
    filled += static_cast<std::size_t>(got);
  }
  content.resize(filled);
  return 0;
}

}  // namespace

int FileDescriptor::Close() {
  if (!valid()) return 0;
  // After EINTR the descriptor is gone all the same.
  return close(Release()) == 0 || errno == EINTR ? 0 : errno;
}

std::string ErrorText(int error) {
  return std::generic_category().message(error);
}

int OpenForReading(const std::filesystem::path& file, FileDescriptor& descriptor) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!opened.valid()) return errno;
  if (fstat(opened.get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  descriptor = std::move(opened);
  return 0;
}

int ReadWhole(int descriptor, std::size_t limit, std::string& content) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return errno;
  if (static_cast<std::uintmax_t>(status.st_size) > limit) return EFBIG;
  try {
    content.resize(static_cast<std::size_t>(status.st_size));
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
  return ReadPieces(descriptor, content);
}

}  // namespace mirellon::base
