// The language file and the texts of the language in use.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace mirellon::settings {

inline constexpr int kMostLanguages = 100;
inline constexpr std::size_t kAcronymCapacity = 16;  // characters, the terminator counted

// Where languages are kept. Both files have one form; of the second only "Language Current" is used.
struct LanguagePaths {
  std::filesystem::path shared;  // "Mirellon_loc.ini" beside the program: languages, texts, the choice
  std::filesystem::path own;     // the same name in the user's folder: the choice, where it stands here

  // By base::ResourceFile and base::UserFolder. `applicationData` is base::ApplicationDataFolder().
  [[nodiscard]] static LanguagePaths Of(const std::filesystem::path& applicationData);
};

struct Language {
  std::wstring name;     // for the list in the options; at most 1023 characters
  std::wstring acronym;  // at most 15
};

// Every text of the program, English where the language file has no other. Texts are read once, at start-up;
// another language shows at the next start. Nothing here fails: what is missing is English.
class Localization {
 public:
  // English only, no languages to choose from.
  Localization();

  // The texts of the current language. `paths` are kept for all later calls.
  void LoadTexts(const LanguagePaths& paths);
  // The list of languages, and the current one anew.
  void LoadLanguages();

  // Text `number` of the table, line breaks in it as "\n"; empty for a number without a text.
  [[nodiscard]] const std::wstring& Text(int number) const;

  [[nodiscard]] const std::vector<Language>& languages() const { return languages_; }
  // As the file says, so it may lie outside of the list.
  [[nodiscard]] int current() const { return current_; }
  // Empty for a language outside of the list.
  [[nodiscard]] std::wstring CurrentAcronym() const;

  // Text `number` as another language's section of the file has it now, without a change of language.
  [[nodiscard]] std::wstring TextIn(int language, int number) const;

  // Makes `language` the current one and writes "Language Current": into the shared file, or, where there is
  // none or it cannot be written, into the user's own, which from then on wins for that user. A file that
  // says so already is not touched. True = failed: it holds for this run only.
  [[nodiscard]] bool ChooseLanguage(int language);

  // "mirellon_%s.html" of the current language's acronym, else of the first language's ("en" where there are
  // none), in the first of the folders that holds it (base::ResourceFolders()); empty when there is neither.
  [[nodiscard]] std::filesystem::path HelpFile(const std::vector<std::filesystem::path>& folders) const;

 private:
  LanguagePaths paths_;
  std::map<int, std::wstring> texts_;
  std::vector<Language> languages_;
  int current_ = 0;
};

// Reads the texts: the start-up's first step.
[[nodiscard]] Localization LoadLocalization(const LanguagePaths& paths);

}  // namespace mirellon::settings
