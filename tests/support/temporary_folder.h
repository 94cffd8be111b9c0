// A folder that lives as long as a test.
#pragma once

#include <filesystem>

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

}  // namespace mirellon::test
