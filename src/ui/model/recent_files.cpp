#include "ui/model/recent_files.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/ini_file.h"
#include "base/paths.h"
#include "base/text.h"
#include "settings/ini_update.h"

namespace mirellon::ui {

namespace {

constexpr const wchar_t* kSection = L"Recent Files";

std::wstring KeyOf(std::size_t index) {
  return L"File" + std::to_wstring(index);
}

bool CanBeKept(const std::filesystem::path& file) {
  const std::string& name = file.native();
  return base::IsValidUtf8(name) && base::PrintableName(name) == name;
}

}  // namespace

void RecentFiles::Add(const std::filesystem::path& file) {
  Remove(file);
  files_.insert(files_.begin(), file);
  if (files_.size() > kMost) files_.resize(kMost);
}

void RecentFiles::Remove(const std::filesystem::path& file) {
  files_.erase(std::remove(files_.begin(), files_.end(), file), files_.end());
}

void RecentFiles::Load(const std::filesystem::path& iniFile) {
  files_.clear();
  base::IniFile ini;
  if (ini.Read(iniFile) != base::IniFile::ReadResult::kRead) return;
  for (std::size_t i = 0; i < kMost; ++i) {
    const std::optional<std::wstring> name = ini.Find(kSection, KeyOf(i));
    if (name && !name->empty()) files_.emplace_back(base::Utf8FromWide(*name));
  }
}

void RecentFiles::Refresh(const std::filesystem::path& iniFile) {
  const std::vector<std::filesystem::path> mine = std::move(files_);
  Load(iniFile);
  // What no file can hold is known here alone.
  for (auto file = mine.rbegin(); file != mine.rend(); ++file) {
    if (!CanBeKept(*file)) Add(*file);
  }
}

bool RecentFiles::Store(const std::filesystem::path& iniFile) const {
  if (base::EnsureFolder(iniFile.parent_path())) return true;
  std::vector<settings::IniValue> values;
  for (const std::filesystem::path& file : files_) {
    if (CanBeKept(file)) values.push_back({KeyOf(values.size()), base::WideFromUtf8(file.native())});
  }
  while (values.size() < kMost) values.push_back({KeyOf(values.size()), L""});
  return settings::UpdateIni(iniFile, kSection, values).failed;
}

}  // namespace mirellon::ui
