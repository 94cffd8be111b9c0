#include "cli/file_list.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "base/file_descriptor.h"

namespace mirellon::cli {

namespace {

// Nothing of it is a failed read: the list may be a pipe.
bool ReadAll(std::istream& stream, std::string& text) {
  std::array<char, 65536> piece{};
  while (stream.read(piece.data(), piece.size()) || stream.gcount() > 0) {
    text.append(piece.data(), static_cast<std::size_t>(stream.gcount()));
  }
  return stream.bad();
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

std::string ReadFileList(const std::filesystem::path& list, std::istream& standardInput,
                         std::vector<std::filesystem::path>& files) {
  std::string text;
  bool failed = false;
  if (list == "-") {
    failed = ReadAll(standardInput, text);
  } else {
    std::error_code error;
    if (std::filesystem::is_directory(list, error)) return base::ErrorText(EISDIR);
    errno = 0;
    std::ifstream file(list, std::ios::binary);
    if (!file) return base::ErrorText(errno != 0 ? errno : ENOENT);
    failed = ReadAll(file, text);
  }
  if (failed) return "it cannot be read";
  files = SplitFileList(text);
  return {};
}

}  // namespace mirellon::cli
