// The translations that the program comes with.
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/ini_file.h"
#include "base/text.h"
#include "settings/app_settings.h"
#include "settings/localization.h"
#include "settings/options_state.h"
#include "settings/text_table.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {
namespace {

const std::filesystem::path kFile = std::filesystem::path(MIRELLON_RESOURCES) / "Mirellon_loc.ini";

std::vector<TextRow> AllRows() {
  std::vector<TextRow> rows(TextTable().begin(), TextTable().end());
  rows.insert(rows.end(), OwnTextTable().begin(), OwnTextTable().end());
  return rows;
}

// Each section's lines, without the reader that the program uses.
std::map<std::string, std::vector<std::string>> Sections() {
  std::map<std::string, std::vector<std::string>> sections;
  std::string section;
  std::istringstream lines(test::ReadBytes(kFile));
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.front() == '[') {
      section = line.substr(1, line.find(']') - 1);
    } else if (!line.empty() && line.front() != ';') {
      sections[section].push_back(line);
    }
  }
  return sections;
}

std::size_t Count(const std::wstring& text, const std::wstring& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::wstring::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

bool EndsWith(const std::wstring& text, const std::wstring& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

class LanguageFileTest : public ::testing::Test {
 protected:
  LanguageFileTest() {
    localization_.LoadLanguages();
    for (int language = 0; language < languages(); ++language) {
      test::WriteBytes(folder_ / "own.ini", "[General]\nLanguage Current=" + std::to_string(language));
      in_.push_back(LoadLocalization({kFile, folder_ / "own.ini"}));
    }
  }

  int languages() const { return static_cast<int>(localization_.languages().size()); }
  const std::wstring& TextIn(int language, int number) const {
    return in_[static_cast<std::size_t>(language)].Text(number);
  }
  std::string Where(int language, int number) const {
    return base::Utf8FromWide(localization_.languages()[static_cast<std::size_t>(language)].acronym) + " " +
           std::to_string(number) + ": " + base::Utf8FromWide(TextIn(language, number));
  }

  test::TemporaryFolder folder_;
  std::vector<Localization> in_;
  Localization localization_ = LoadLocalization({kFile, folder_ / "own.ini"});
};

TEST_F(LanguageFileTest, NamesItsLanguages) {
  const std::pair<const wchar_t*, const wchar_t*> expected[] = {
      {L"English", L"en"},      {L"Deutsch", L"de"},           {L"Fran\u00E7ais", L"fr"},
      {L"Espa\u00F1ol", L"es"}, {L"\u010Ce\u0161tina", L"cs"}, {L"\u65E5\u672C\u8A9E", L"ja"}};
  ASSERT_EQ(localization_.languages().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(localization_.languages()[i].name, expected[i].first) << i;
    EXPECT_EQ(localization_.languages()[i].acronym, expected[i].second) << i;
  }
  EXPECT_EQ(localization_.current(), 0);
  for (const TextRow& row : AllRows()) EXPECT_EQ(localization_.Text(row.number), row.english) << row.number;
}

TEST_F(LanguageFileTest, EverySectionHasEveryTextOnce) {
  std::set<std::string> wanted = {"Language", "Acronym"};
  for (const TextRow& row : AllRows()) wanted.insert("string" + std::to_string(row.number));
  const auto sections = Sections();
  for (int language = 1; language < languages(); ++language) {
    std::set<std::string> found;
    for (const std::string& line : sections.at(std::to_string(language))) {
      const std::string key = line.substr(0, line.find(" = "));
      EXPECT_TRUE(found.insert(key).second) << language << ": twice " << key;
      EXPECT_EQ(wanted.count(key), 1U) << language << ": unknown " << line;
      EXPECT_NE(line.back(), ' ') << language << ": a blank that no reader keeps: " << line;
    }
    for (const std::string& key : wanted) EXPECT_EQ(found.count(key), 1U) << language << ": no " << key;
  }
}

// What the code that shows a text reads out of it.
TEST_F(LanguageFileTest, TextsKeepWhatTheCodeNeeds) {
  for (int language = 1; language < languages(); ++language) {
    for (const TextRow& row : AllRows()) {
      const std::wstring english = row.english;
      const std::wstring text = TextIn(language, row.number);
      const std::string where = Where(language, row.number);
      for (const wchar_t* part : {L"%1", L"%2", L"%s", L"\n", L"...", L"<<", L">>", L"<<Unknown Camera>>"}) {
        EXPECT_EQ(Count(text, part), Count(english, part)) << where << ": " << base::Utf8FromWide(part);
      }
      // Where older texts part their lines; in others it is a mark like any other.
      if (row.number < kFirstOwnText) {
        EXPECT_EQ(Count(text, L";"), Count(english, L";")) << where;
      }
      for (const wchar_t* end : {L"...Ctrl+O", L"...Ctrl+S", L" F1", L"...", L":", L" ."}) {
        EXPECT_EQ(EndsWith(text, end), EndsWith(english, end)) << where;
      }
      EXPECT_EQ(text.find(L'&'), std::wstring::npos) << where << ": menus choose their letters themselves";
      EXPECT_FALSE(text.empty()) << where;
      EXPECT_LT(text.size(), base::kLongTextCapacity - 1) << where;
      EXPECT_EQ(text.find(L'\uFFFD'), std::wstring::npos) << where;
    }
    EXPECT_NE(TextIn(language, 88).find(L"denoised"), std::wstring::npos) << language;
  }
}

TEST_F(LanguageFileTest, EverythingIsTranslated) {
  // Words that are the same there.
  const std::map<int, std::set<int>> same = {{1, {59, 63, 250, 330}},
                                             {2, {8, 57, 59, 63, 330, 363}},
                                             {3, {29, 250, 254, 330}},
                                             {4, {59, 250}},
                                             {5, {59}}};
  for (int language = 1; language < languages(); ++language) {
    for (const TextRow& row : AllRows()) {
      const bool equal = TextIn(language, row.number) == row.english;
      EXPECT_EQ(equal, same.at(language).count(row.number) == 1) << Where(language, row.number);
    }
  }
}

TEST_F(LanguageFileTest, ChoosingALanguageKeepsTheFile) {
  const LanguagePaths paths{folder_ / "Mirellon_loc.ini", folder_ / "user" / "own.ini"};
  test::WriteBytes(paths.shared, test::ReadBytes(kFile));
  AppSettings settings(folder_ / "config");
  for (int language = languages() - 1; language >= 0; --language) {
    Localization localization = LoadLocalization(paths);
    localization.LoadLanguages();
    OptionsState options(settings, localization, {}, 2);
    const bool other = language != localization.current();
    options.ChooseLanguage(language);
    const OptionsOutcome outcome = options.Accept();
    EXPECT_EQ(outcome.warning, "");
    ASSERT_EQ(outcome.restart.has_value(), other);
    // In the language chosen, before it is in use.
    EXPECT_EQ(outcome.restart->caption, TextIn(language, 63));
    EXPECT_EQ(outcome.restart->text, TextIn(language, 64));
    Localization again = LoadLocalization(paths);
    again.LoadLanguages();
    EXPECT_EQ(again.CurrentAcronym(), localization_.languages()[static_cast<std::size_t>(language)].acronym);
    for (const TextRow& row : AllRows()) {
      EXPECT_EQ(again.Text(row.number), TextIn(language, row.number)) << row.number;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(paths.own));
}

}  // namespace
}  // namespace mirellon::settings
