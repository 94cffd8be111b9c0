#include "settings/localization.h"

#include <algorithm>
#include <system_error>

#include "base/ini_file.h"
#include "base/paths.h"
#include "base/text.h"
#include "settings/ini_update.h"
#include "settings/text_table.h"

namespace mirellon::settings {

namespace {

constexpr const wchar_t* kGeneral = L"General";
constexpr const wchar_t* kCurrentKey = L"Language Current";
constexpr const char* kFileName = "Mirellon_loc.ini";

// A line of a file cannot hold a line break; "\n" written out stands for one.
std::wstring WithLineBreaks(std::wstring text) {
  for (std::size_t at = text.find(L"\\n"); at != std::wstring::npos; at = text.find(L"\\n", at + 1)) {
    text.replace(at, 2, 1, L'\n');
  }
  return text;
}

std::wstring TextOf(const base::IniFile& file, int language, int number) {
  const auto found = file.Find(std::to_wstring(language), L"string" + std::to_wstring(number));
  if (!found) return EnglishText(number);
  return base::CutText(WithLineBreaks(*found), base::kLongTextCapacity);
}

std::wstring ValueOf(const base::IniFile& file, int language, const wchar_t* key, std::size_t capacity) {
  return base::CutText(file.Find(std::to_wstring(language), key).value_or(std::wstring()), capacity);
}

// The user's own choice, else everybody's.
int CurrentLanguage(const base::IniFile& shared, const std::filesystem::path& ownPath) {
  base::IniFile own;
  (void)own.Read(ownPath);
  return own.GetInteger(kGeneral, kCurrentKey, shared.GetInteger(kGeneral, kCurrentKey, 0));
}

std::wstring AcronymOf(const std::vector<Language>& languages, int language) {
  const bool known = language >= 0 && static_cast<std::size_t>(language) < languages.size();
  return known ? languages[static_cast<std::size_t>(language)].acronym : std::wstring();
}

// Empty when there is no such file.
std::filesystem::path HelpFileFor(const std::wstring& acronym,
                                  const std::vector<std::filesystem::path>& folders) {
  // An acronym is part of a name, never a way to another folder.
  if (acronym.empty() || acronym.find(L'/') != std::wstring::npos) return {};
  std::filesystem::path file =
      base::ResourceFile("mirellon_" + base::Utf8FromWide(acronym) + ".html", folders);
  std::error_code ignored;
  return std::filesystem::is_regular_file(file, ignored) ? file : std::filesystem::path();
}

}  // namespace

LanguagePaths LanguagePaths::Of(const std::filesystem::path& applicationData) {
  return {base::ResourceFile(kFileName), base::UserFolder(applicationData) / kFileName};
}

Localization::Localization() {
  for (const TextRow& row : TextTable()) texts_.emplace(row.number, row.english);
  for (const TextRow& row : OwnTextTable()) texts_.emplace(row.number, row.english);
}

void Localization::LoadTexts(const LanguagePaths& paths) {
  paths_ = paths;
  base::IniFile file;
  (void)file.Read(paths_.shared);
  current_ = CurrentLanguage(file, paths_.own);
  for (auto& [number, text] : texts_) text = TextOf(file, current_, number);
}

void Localization::LoadLanguages() {
  languages_.clear();
  base::IniFile file;
  (void)file.Read(paths_.shared);
  current_ = CurrentLanguage(file, paths_.own);
  const int count = std::min(file.GetInteger(kGeneral, L"Languages No", 0), kMostLanguages);
  for (int i = 0; i < count; ++i) {
    languages_.push_back({ValueOf(file, i, L"Language", base::kLongTextCapacity),
                          ValueOf(file, i, L"Acronym", kAcronymCapacity)});
  }
}

const std::wstring& Localization::Text(int number) const {
  static const std::wstring none;
  const auto found = texts_.find(number);
  return found == texts_.end() ? none : found->second;
}

std::wstring Localization::CurrentAcronym() const {
  return AcronymOf(languages_, current_);
}

std::wstring Localization::TextIn(int language, int number) const {
  base::IniFile file;
  (void)file.Read(paths_.shared);
  return TextOf(file, language, number);
}

bool Localization::ChooseLanguage(int language) {
  current_ = language;
  const std::wstring value = std::to_wstring(language);
  base::IniFile file;
  const bool shared = file.Read(paths_.shared) == base::IniFile::ReadResult::kRead && !file.damaged() &&
                      !UpdateIni(paths_.shared, kGeneral, kCurrentKey, value).failed;
  // An own choice made earlier would win over the new one.
  base::IniFile own;
  (void)own.Read(paths_.own);
  if (shared && !own.Find(kGeneral, kCurrentKey)) return false;
  return base::EnsureFolder(paths_.own.parent_path()) ||
         UpdateIni(paths_.own, kGeneral, kCurrentKey, value).failed;
}

std::filesystem::path Localization::HelpFile(const std::vector<std::filesystem::path>& folders) const {
  std::filesystem::path file = HelpFileFor(CurrentAcronym(), folders);
  if (!file.empty()) return file;
  // Without a language file the program's own language is the first one.
  return HelpFileFor(languages_.empty() ? L"en" : AcronymOf(languages_, 0), folders);
}

Localization LoadLocalization(const LanguagePaths& paths) {
  Localization localization;
  localization.LoadTexts(paths);
  return localization;
}

}  // namespace mirellon::settings
