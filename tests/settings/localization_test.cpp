#include "settings/localization.h"

#include <string>

#include <gtest/gtest.h>

#include "settings/text_table.h"
#include "support/temporary_folder.h"

namespace mirellon::settings {

class LocalizationTest : public ::testing::Test {
 protected:
  Localization Load(const std::string& text) {
    test::WriteBytes(paths_.shared, text);
    Localization localization = LoadLocalization(paths_);
    localization.LoadLanguages();
    return localization;
  }
  test::TemporaryFolder folder_;
  LanguagePaths paths_{folder_ / "shared.ini", folder_ / "user/own.ini"};
};

TEST_F(LocalizationTest, WithoutAFileEverythingIsEnglish) {
  const Localization localization = LoadLocalization(paths_);
  EXPECT_EQ(localization.Text(1), L"Press Ctrl+O to open an image");
  EXPECT_EQ(localization.Text(69), L"Process per component ;(slows down the processing)");
  EXPECT_NE(localization.Text(143).find(L"from:\n\n <<Unknown Camera>>   Lowest"), std::wstring::npos);
  for (const int unused : {-1, 0, 14, 154, 160, 1000}) EXPECT_EQ(localization.Text(unused), L"") << unused;
  EXPECT_EQ(localization.Text(kFirstOwnText), OwnTextTable().front().english);
  EXPECT_TRUE(localization.languages().empty());
}

TEST_F(LocalizationTest, ReadsTheCurrentLanguage) {
  const Localization localization = Load(
      "\xEF\xBB\xBF[General]\r\nLanguages No=3\r\nLanguage Current= 1 \r\n"
      "[0]\r\nLanguage=English\r\nAcronym=en\r\nstring2=nobody\r\n"
      "[1]\r\nLanguage=" +
      std::string(1500, 'N') +
      "\r\nAcronym=abcdefghijklmnopqrst\r\n"
      "STRING2=\"  Datei;  \"\r\nstring3=\r\nstring4=erste\\nzweite\\n\r\nstring14=unused\r\n"
      "string6=" +
      std::string(1500, 'x') +
      "\r\nstring161=\xC3\x9C"
      "bergangen\r\n");
  EXPECT_EQ(localization.current(), 1);
  EXPECT_EQ(localization.Text(2), L"  Datei;  ");
  EXPECT_EQ(localization.Text(3), L"") << "an empty text is a text";
  EXPECT_EQ(localization.Text(4), L"erste\nzweite\n");
  EXPECT_EQ(localization.Text(5), L"Open...Ctrl+O");
  EXPECT_EQ(localization.Text(6), std::wstring(1023, L'x'));
  EXPECT_EQ(localization.Text(14), L"");
  EXPECT_EQ(localization.Text(161), L"\u00DCbergangen");
  EXPECT_EQ(localization.TextIn(0, 2), L"nobody");
  EXPECT_EQ(localization.TextIn(7, 2), L"File");
  ASSERT_EQ(localization.languages().size(), 3U);
  EXPECT_EQ(localization.languages()[1].name, std::wstring(1023, L'N'));
  EXPECT_EQ(localization.languages()[1].acronym, L"abcdefghijklmno");
  EXPECT_EQ(localization.languages()[2].name, L"");
}

TEST_F(LocalizationTest, HoldsTheNumberOfLanguages) {
  const std::pair<const char*, std::size_t> cases[] = {{"0", 0},     {"-4", 0},         {"two", 0},
                                                       {"100", 100}, {"4000000000", 0}, {"101", 100}};
  for (const auto& [number, count] : cases) {
    const Localization localization = Load(std::string("[General]\nLanguages No=") + number + "\n");
    EXPECT_EQ(localization.languages().size(), count) << number;
  }
}

TEST_F(LocalizationTest, TheChoiceGoesWhereItCanBeWritten) {
  Localization localization = Load("; by hand\n[General]\nLanguages No = 2\n");
  EXPECT_FALSE(localization.ChooseLanguage(1));
  EXPECT_EQ(test::ReadBytes(paths_.shared),
            "; by hand\n\n[General]\nLanguages No = 2\nLanguage Current = 1\n");
  EXPECT_FALSE(std::filesystem::exists(paths_.own));

  // In a file that is damaged, or none at all, nothing is written.
  test::WriteBytes(paths_.shared, "[General]\nLanguage Current=1\nstray\n");
  EXPECT_FALSE(localization.ChooseLanguage(0));
  EXPECT_EQ(test::ReadBytes(paths_.shared), "[General]\nLanguage Current=1\nstray\n");
  EXPECT_EQ(LoadLocalization(paths_).current(), 0) << "the user's own choice wins";
  std::filesystem::remove(paths_.shared);
  EXPECT_FALSE(localization.ChooseLanguage(1));
  EXPECT_EQ(LoadLocalization(paths_).current(), 1);

  // A choice stored here before must not win over a later one.
  localization = Load("[General]\nLanguages No = 2\n");
  EXPECT_FALSE(localization.ChooseLanguage(0));
  EXPECT_EQ(LoadLocalization(paths_).current(), 0);
  std::filesystem::remove_all(paths_.own.parent_path());
  EXPECT_EQ(LoadLocalization(paths_).current(), 0);
}

TEST_F(LocalizationTest, HelpFallsBackToTheFirstLanguage) {
  const std::vector<std::filesystem::path> folders = {folder_ / "missing", folder_.path()};
  test::WriteBytes(folder_ / "mirellon_en.html", "help");
  test::WriteBytes(folder_ / "mirellon_de.html", "Hilfe");
  Localization localization =
      Load("[General]\nLanguages No=3\n[0]\nAcronym=en\n[1]\nAcronym=de\n[2]\nAcronym=x/../mirellon_de\n");
  for (const auto& [language, name] :
       {std::pair{1, "mirellon_de.html"}, {2, "mirellon_en.html"}, {-1, "mirellon_en.html"}}) {
    (void)localization.ChooseLanguage(language);
    EXPECT_EQ(localization.HelpFile(folders), folder_ / name) << language;
  }
  EXPECT_EQ(localization.HelpFile({folder_ / "missing"}), "");
  EXPECT_EQ(Localization().HelpFile(folders), folder_ / "mirellon_en.html") << "no language file, so English";
}

}  // namespace mirellon::settings
