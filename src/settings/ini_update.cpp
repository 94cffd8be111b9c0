#include "settings/ini_update.h"

#include <algorithm>

#include "base/file_descriptor.h"
#include "base/ini_file.h"
#include "base/kept_copy.h"

namespace mirellon::settings {

IniUpdate UpdateIni(const std::filesystem::path& file, const std::wstring& section, const std::wstring& key,
                    const std::wstring& value) {
  return UpdateIni(file, section, {{key, value}});
}

IniUpdate UpdateIni(const std::filesystem::path& file, const std::wstring& section,
                    const std::vector<IniValue>& values) {
  IniUpdate update;
  base::IniFile content;
  const bool unread = content.Read(file) == base::IniFile::ReadResult::kFailed;
  if (unread && !content.damaged()) return {true, content.cause(), {}};
  const bool same = std::all_of(values.begin(), values.end(), [&](const IniValue& value) {
    return content.Find(section, value.key) == value.value;
  });
  if (same) return update;
  if (content.damaged()) {
    const int error = base::KeepCopy(file, update.kept);
    if (error != 0) return {true, "its content could not be kept: " + base::ErrorText(error), {}};
  }
  update.failed =
      std::any_of(values.begin(), values.end(),
                  [&](const IniValue& value) { return content.Set(section, value.key, value.value); }) ||
      content.Write(file);
  update.cause = content.cause();
  return update;
}

}  // namespace mirellon::settings
