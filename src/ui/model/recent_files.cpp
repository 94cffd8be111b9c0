#include "ui/model/recent_files.h"

#include <algorithm>
#include <string>

#include "base/ini_file.h"
#include "base/paths.h"
#include "base/text.h"

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

bool RecentFiles::Store(const std::filesystem::path& iniFile) const {
  if (base::EnsureFolder(iniFile.parent_path())) return true;
  base::IniFile ini;
  if (ini.Read(iniFile) == base::IniFile::ReadResult::kFailed) return true;
  std::size_t index = 0;
  for (const std::filesystem::path& file : files_) {
    if (!CanBeKept(file)) continue;
    if (ini.Set(kSection, KeyOf(index++), base::WideFromUtf8(file.native()))) return true;
  }
  for (; index < kMost; ++index) {
    if (ini.Find(kSection, KeyOf(index)) && ini.Set(kSection, KeyOf(index), L"")) return true;
  }
  return ini.Write(iniFile);
}

}  // namespace mirellon::ui
