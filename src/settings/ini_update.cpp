#include "settings/ini_update.h"

#include "base/file_descriptor.h"
#include "base/ini_file.h"
#include "base/kept_copy.h"

namespace mirellon::settings {

IniUpdate UpdateIni(const std::filesystem::path& file, const std::wstring& section, const std::wstring& key,
                    const std::wstring& value) {
  IniUpdate update;
  base::IniFile content;
  const bool unread = content.Read(file) == base::IniFile::ReadResult::kFailed;
  if (unread && !content.damaged()) return {true, content.cause(), {}};
  if (content.Find(section, key) == value) return update;
  if (content.damaged()) {
    const int error = base::KeepCopy(file, update.kept);
    if (error != 0) return {true, "its content could not be kept: " + base::ErrorText(error), {}};
  }
  update.failed = content.Set(section, key, value) || content.Write(file);
  update.cause = content.cause();
  return update;
}

}  // namespace mirellon::settings
