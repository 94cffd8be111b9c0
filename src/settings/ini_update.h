// Changing keys of a file that somebody else may have written.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace mirellon::settings {

struct IniUpdate {
  bool failed = false;
  std::string cause;           // why, in English, without a full stop
  std::filesystem::path kept;  // where the content that could not be understood went; empty: nowhere
};

// Sets the key unless it says so already. What cannot be understood is kept beside the file first; when that
// fails, nothing is written.
[[nodiscard]] IniUpdate UpdateIni(const std::filesystem::path& file, const std::wstring& section,
                                  const std::wstring& key, const std::wstring& value);

struct IniValue {
  std::wstring key;
  std::wstring value;
};
// The same for several keys of a section, written together.
[[nodiscard]] IniUpdate UpdateIni(const std::filesystem::path& file, const std::wstring& section,
                                  const std::vector<IniValue>& values);

}  // namespace mirellon::settings
