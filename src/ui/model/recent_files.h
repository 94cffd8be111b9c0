// The photographs opened lately.
#pragma once

#include <filesystem>
#include <vector>

namespace mirellon::ui {

// The newest first, each once.
class RecentFiles {
 public:
  static constexpr std::size_t kMost = 10;

  void Add(const std::filesystem::path& file);
  void Remove(const std::filesystem::path& file);
  void Clear() { files_.clear(); }
  [[nodiscard]] const std::vector<std::filesystem::path>& files() const { return files_; }

  // The section "Recent Files" of an ini file, keys "File0" and on. A missing file gives an empty list; a
  // name that an ini file cannot hold (with a line end, or not UTF-8) is not kept. True = failed to write.
  void Load(const std::filesystem::path& iniFile);
  // Takes what another program has stored meanwhile.
  void Refresh(const std::filesystem::path& iniFile);
  [[nodiscard]] bool Store(const std::filesystem::path& iniFile) const;

 private:
  std::vector<std::filesystem::path> files_;
};

}  // namespace mirellon::ui
