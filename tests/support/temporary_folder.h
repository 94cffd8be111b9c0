// A folder that lives as long as a test, and what tests do with files.
#pragma once

#include <filesystem>
#include <string>

namespace mirellon::test {

// Made empty under the system's temporary folder, removed with all it holds (also what a test made
// read-only).
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& name) const {
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

void WriteBytes(const std::filesystem::path& file, const std::string& bytes);
[[nodiscard]] std::string ReadBytes(const std::filesystem::path& file);
// How many entries a folder has, hidden ones too.
[[nodiscard]] std::size_t FilesIn(const std::filesystem::path& folder);

}  // namespace mirellon::test
