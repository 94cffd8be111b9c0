#include "ui/model/help_page.h"

#include <array>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/text.h"
#include "support/temporary_folder.h"

namespace mirellon::ui {
namespace {

constexpr std::array kLanguages{"en", "de", "fr", "es", "cs", "ja"};

// A localization whose first language says other things than English.
settings::Localization Localized(const test::TemporaryFolder& folder, const std::string& texts) {
  test::WriteBytes(folder / "loc.ini", "[General]\nLanguages No=1\n[0]\nAcronym=xx\n" + texts);
  return settings::LoadLocalization({folder / "loc.ini", folder / "own.ini"});
}

TEST(HelpPageTest, QuotesTextsWithoutWhatBelongsToTheirPlace) {
  const test::TemporaryFolder folder;
  const settings::Localization english;
  for (const auto& [number, quoted] : std::map<int, std::string>{{5, "Open"},
                                                                 {12, "Help Contents"},
                                                                 {32, "Medium (normal)"},
                                                                 {38, "Denoise"},
                                                                 {83, "Set Zoom 100%"},
                                                                 {116, "Strength - Intensity"},
                                                                 {400, ""}}) {
    EXPECT_EQ(QuotedText(english, number), quoted) << number;
  }
  const settings::Localization other =
      Localized(folder,
                "string2 = &Datei\nstring3 = ファイル(&F)...\nstring4 = A && B\n"
                "string5 = Intensité\xC2\xA0:\nstring6 = 強さ：\nstring7 = a\\nb\n");
  EXPECT_EQ(QuotedText(other, 2), "Datei");
  EXPECT_EQ(QuotedText(other, 3), "ファイル");
  EXPECT_EQ(QuotedText(other, 4), "A & B");
  EXPECT_EQ(QuotedText(other, 5), "Intensité");
  EXPECT_EQ(QuotedText(other, 6), "強さ");
  EXPECT_EQ(QuotedText(other, 7), "a b");
}

TEST(HelpPageTest, FillsTextsInAndListsSections) {
  const test::TemporaryFolder folder;
  const settings::Localization texts = Localized(folder, "string3 = <R&&D>\n");
  const HelpPage page = MakeHelpPage(
      "<h1><a name=\"top\">T</a></h1><hr><h2><a name=\"x\">{{string3}} {{string999}}</a></h2>"
      "<p>{{string7}} {{string1x {{string",
      texts);
  EXPECT_EQ(page.html,
            "<h1><a name=\"top\">T</a></h1><hr><h2><a name=\"x\">&lt;R&amp;D&gt; {{string999}}</a></h2>"
            "<p>Close {{string1x {{string");
  ASSERT_EQ(page.sections.size(), 2U);
  EXPECT_EQ(page.sections[1].level, 2);
  EXPECT_EQ(page.sections[1].anchor, "x");
  EXPECT_EQ(page.sections[1].title, "<R&D> {{string999}}");
}

TEST(HelpPageTest, RefusesWhatIsNoPage) {
  const test::TemporaryFolder folder;
  const settings::Localization texts;
  test::WriteBytes(folder / "empty.html", "");
  test::WriteBytes(folder / "large.html", std::string(5 << 20, 'x'));
  for (const char* name : {"empty.html", "large.html", "missing.html", "."})
    EXPECT_FALSE(ReadHelpPage(folder / name, texts)) << name;
}

// What a page is made of: its tags, without what a translation may change.
struct Skeleton {
  std::vector<std::string> blocks;     // in their order
  std::multiset<std::string> inlines;  // a language has its own order of words
  std::multiset<std::string> texts;    // of the interface
};

std::string Attribute(std::string_view tag, const std::string& name) {
  const std::string begin = std::string(" ").append(name).append("=\"");
  const std::size_t at = tag.find(begin);
  if (at == std::string_view::npos) return {};
  const std::size_t from = at + begin.size();
  return std::string(tag.substr(from, tag.find('"', from) - from));
}

Skeleton SkeletonOf(const std::string& page) {
  static const std::set<std::string> kInline{"b", "/b", "kbd", "/kbd", "code", "/code"};
  Skeleton skeleton;
  for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
    const std::string tag = page.substr(at + 1, page.find('>', at) - at - 1);
    std::string kept = tag.substr(0, tag.find(' '));
    for (const char* name : {"name", "href", "src", "class", "charset", "width", "height"})
      kept.append("|").append(Attribute(tag, name));
    const bool isInline = kInline.contains(tag) || !Attribute(tag, "href").empty() || tag == "/a";
    if (isInline) skeleton.inlines.insert(kept);
    if (!isInline) skeleton.blocks.push_back(kept);
  }
  for (std::size_t at = page.find("{{"); at != std::string::npos; at = page.find("{{", at + 1))
    skeleton.texts.insert(page.substr(at, page.find("}}", at) - at));
  return skeleton;
}

class InstalledHelpTest : public ::testing::TestWithParam<const char*> {
 protected:
  static std::string Page(const std::string& language) {
    return test::ReadBytes(base::ResourceFile("mirellon_" + language + ".html"));
  }
};

TEST_P(InstalledHelpTest, IsBuiltLikeTheEnglishOne) {
  const std::string page = Page(GetParam());
  const Skeleton skeleton = SkeletonOf(page);
  const Skeleton english = SkeletonOf(Page("en"));
  EXPECT_GT(english.blocks.size(), 300U);
  EXPECT_EQ(skeleton.blocks, english.blocks);
  EXPECT_EQ(skeleton.inlines, english.inlines);
  EXPECT_EQ(skeleton.texts, english.texts);
  EXPECT_TRUE(base::IsValidUtf8(page));
  EXPECT_NE(page.find("<html lang=\"" + std::string(GetParam()) + "\">"), std::string::npos);
  EXPECT_NE(page.find("<meta charset=\"utf-8\">"), std::string::npos);
}

TEST_P(InstalledHelpTest, LeadsNowhereElse) {
  const settings::Localization texts;
  const HelpPage page = MakeHelpPage(Page(GetParam()), texts);
  EXPECT_EQ(page.html.find("{{"), std::string::npos) << "a text that the program does not have";
  EXPECT_EQ(page.html.find("//"), std::string::npos) << "something from elsewhere";
  std::set<std::string> anchors;
  for (const HelpSection& section : page.sections) {
    EXPECT_TRUE(anchors.insert(section.anchor).second) << section.anchor;
    EXPECT_FALSE(section.title.empty()) << section.anchor;
  }
  for (std::size_t at = page.html.find("href=\"#"); at != std::string::npos;
       at = page.html.find("href=\"#", at + 1)) {
    const std::string anchor = page.html.substr(at + 7, page.html.find('"', at + 7) - at - 7);
    EXPECT_TRUE(anchors.contains(anchor)) << anchor;
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, InstalledHelpTest, ::testing::ValuesIn(kLanguages),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(InstalledHelpFilesTest, AreAllUsedAndSmall) {
  const std::filesystem::path english = base::ResourceFile("mirellon_en.html");
  const std::string page = test::ReadBytes(english);
  std::uintmax_t bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(english.parent_path() / "help")) {
    bytes += entry.file_size();
    EXPECT_NE(page.find("\"help/" + entry.path().filename().string() + "\""), std::string::npos)
        << entry.path();
  }
  for (const char* language : kLanguages)
    bytes += std::filesystem::file_size(base::ResourceFile("mirellon_" + std::string(language) + ".html"));
  EXPECT_LT(bytes, 1500000U);
}

}  // namespace
}  // namespace mirellon::ui
