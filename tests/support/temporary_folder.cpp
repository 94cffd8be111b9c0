#include "support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace mirellon::test {

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "mirellon_test_XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  for (auto it = std::filesystem::recursive_directory_iterator(
           path_, std::filesystem::directory_options::skip_permission_denied, ignored);
       it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
    if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
      std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all, ignored);
    }
  }
  std::filesystem::remove_all(path_, ignored);
}

void WriteBytes(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

std::string ReadBytes(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::size_t FilesIn(const std::filesystem::path& folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace mirellon::test
