#include "base/ini_file.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::base {

namespace {

using Result = IniFile::ReadResult;
using test::TemporaryFolder;

void Put(const std::filesystem::path& file, const std::string& content) {
  std::ofstream(file, std::ios::binary) << content;
}

std::string Content(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

TEST(IniFileTest, ReadsAsOtherProgramsDo) {
  const TemporaryFolder folder;
  Put(folder / "a.ini",
      "\xEF\xBB\xBFstray line\r\n; a comment\r\n[ General ]\r\nJPEG=  70 \r\njpeg=60\r\nquoted=\" a \"\r\n"
      "single = "
      "'b'\r\nhalf=\"c\r\nempty=\r\nnested=\"'d'\"\r\numl\xC3\xA4ut=\xC3\xB6=1;2\r\nmulti=<<<X\r\n[general]"
      "\r\n"
      "late=1\r\n[Broken\r\nx=1\r\n");
  IniFile file;
  ASSERT_EQ(file.Read(folder / "a.ini"), Result::kRead);
  const std::vector<std::pair<std::wstring, std::wstring>> cases = {
      {L"jpeg", L"70"},    {L"QUOTED", L" a "},   {L"single", L"b"},   {L"half", L"\"c"}, {L"empty", L""},
      {L"nested", L"'d'"}, {L"umläut", L"ö=1;2"}, {L"multi", L"<<<X"}, {L"late", L"1"},
  };
  for (const auto& [key, value] : cases) EXPECT_EQ(file.Find(L"gEnErAl", key), value);
  EXPECT_EQ(file.Find(L"General", L"missing"), std::nullopt);
  EXPECT_EQ(file.Find(L"Other", L"jpeg"), std::nullopt);
  EXPECT_EQ(file.GetInteger(L"General", L"missing", 7), 7);
  EXPECT_EQ(file.GetInteger(L"General", L"empty", 7), 0);
}

TEST(IniFileTest, WhatIsNotKnownSurvivesAWrite) {
  const TemporaryFolder folder;
  Put(folder / "a.ini",
      "\xEF\xBB\xBF; of mine\r\n\r\n[General]\r\nother=\" kept \"\r\njpeg=70\r\ntwice=1\r\ntwice=2\r\n\r\n"
      "[Foreign]\r\nx=\xC3\xB6\r\n");
  IniFile file;
  ASSERT_EQ(file.Read(folder / "a.ini"), Result::kRead);
  ASSERT_FALSE(file.Set(L"general", L"JPEG", L"90") || file.Set(L"New", L"key", L"value"));
  ASSERT_FALSE(file.Write(folder / "a.ini"));
  EXPECT_EQ(Content(folder / "a.ini"),
            "\xEF\xBB\xBF; of mine\r\n\r\n[General]\r\nother = \" kept \"\r\nJPEG = 90\r\ntwice = 1\r\ntwice "
            "= 2\r\n\r\n"
            "[Foreign]\r\nx = \xC3\xB6\r\n\r\n[New]\r\nkey = value\r\n");
}

TEST(IniFileTest, RefusesWhatItCannotUnderstand) {
  const TemporaryFolder folder;
  IniFile file;
  EXPECT_EQ(file.Read(folder / "missing.ini"), Result::kMissing);
  EXPECT_EQ(file.Read(folder.path()), Result::kFailed);
  EXPECT_EQ(file.cause(), "Is a directory");
  Put(folder / "utf16.ini", std::string("\xFF\xFE[\0G\0", 6));
  EXPECT_EQ(file.Read(folder / "utf16.ini"), Result::kFailed);
  Put(folder / "large.ini", "[General]\njpeg=70\n");
  std::filesystem::resize_file(folder / "large.ini", (16U << 20U) + 1);
  EXPECT_EQ(file.Read(folder / "large.ini"), Result::kFailed);
  EXPECT_EQ(file.Find(L"General", L"jpeg"), std::nullopt);
  EXPECT_TRUE(file.Write(folder / "no folder" / "a.ini"));
  EXPECT_EQ(file.cause(), "No such file or directory");
}

TEST(IniFileTest, SurvivesDamage) {
  const TemporaryFolder folder;
  const std::string text = "; c\n\n[General]\njpeg = 70\n[]\n=x\n<<<\n[Other\nlatin=\xE4\n";
  test::Random random(5);
  for (int i = 0; i < 100; ++i) {
    std::string damaged = text;
    for (int flips = 0; flips < 5; ++flips) {
      damaged[static_cast<std::size_t>(random.Below(static_cast<int>(text.size())))] =
          static_cast<char>(random.Below(random.Below(2) == 0 ? 256 : 16));
    }
    Put(folder / "a.ini", damaged);
    IniFile file;
    if (file.Read(folder / "a.ini") != Result::kRead) continue;
    ASSERT_FALSE(file.Set(L"General", L"jpeg", L"42") || file.Write(folder / "a.ini"));
    IniFile again;
    ASSERT_EQ(again.Read(folder / "a.ini"), Result::kRead);
    EXPECT_EQ(again.GetInteger(L"General", L"jpeg", 0), 42) << damaged;
  }
}

TEST(IniFileTest, ReadsTheLeadingInteger) {
  const std::vector<std::pair<std::wstring, int>> cases = {
      {L"85", 85},
      {L" \t-5x", -5},
      {L"+7.9", 7},
      {L"abc", 0},
      {L"", 0},
      {L"0x10", 0},
      {L"-", 0},
      {L"4294967291", -5},
      {L"2147483648", -2147483647 - 1},
      {L"99999999999999999999", 2147483647},
      {L"-99999999999", -2147483647 - 1},
  };
  for (const auto& [text, number] : cases) EXPECT_EQ(LeadingInteger(text), number) << number;
}

}  // namespace

}  // namespace mirellon::base
