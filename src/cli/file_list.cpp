#include "cli/file_list.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "base/file_descriptor.h"

namespace mirellon::cli {

namespace {

constexpr int kPollMs = 50;  // how soon an abort request is seen

// 0, or the error number; the list may be a pipe.
int ReadAll(int descriptor, const base::RunControl& control, std::size_t limit, std::string& text) {
  std::array<char, 65536> piece{};
  while (!control.Aborted()) {
    pollfd wait{descriptor, POLLIN, 0};
    if (poll(&wait, 1, kPollMs) <= 0) continue;
    const ssize_t got = read(descriptor, piece.data(), piece.size());
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got < 0) return errno;
    if (got == 0) return 0;
    text.append(piece.data(), static_cast<std::size_t>(got));
    if (text.size() > limit) return EFBIG;
  }
  return 0;
}

}  // namespace

std::vector<std::filesystem::path> SplitFileList(std::string_view text) {
  const char separator = text.find('\0') == std::string_view::npos ? '\n' : '\0';
  std::vector<std::filesystem::path> files;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) files.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return files;
}

std::string ReadFileList(const std::filesystem::path& list, int standardInput,
                         const base::RunControl& control, std::vector<std::filesystem::path>& files,
                         std::size_t limit) {
  base::FileDescriptor opened;
  if (list != "-") {
    // A pipe that nobody writes to yet must not hold up an abort request.
    opened = base::FileDescriptor(open(list.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!opened.valid()) return base::ErrorText(errno);
  }
  std::string text;
  const int error = ReadAll(opened.valid() ? opened.get() : standardInput, control, limit, text);
  if (error == EFBIG) return "the list is longer than " + std::to_string(limit) + " bytes";
  if (error != 0) return base::ErrorText(error);
  files = SplitFileList(text);
  return {};
}

}  // namespace mirellon::cli
