#include "base/ini_file.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirellon::base {

using Result = IniFile::ReadResult;

TEST(IniFileTest, ReadsAsOtherProgramsDo) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "a.ini",
                   "\xEF\xBB\xBFstray line\r\n; a comment\r\n[ General ]\r\nJPEG=  70 \r\njpeg=60\r\n"
                   "quoted=\" a \"\r\nsingle = 'b'\r\nhalf=\"c\r\nempty=\r\nnested=\"'d'\"\r\n"
                   "uml\xC3\xA4ut=\xC3\xB6=1;2\r\nmulti=<<<X\r\n[general]\r\nlate=1\r\n[Broken\r\nx=1\r\n");
  IniFile file;
  ASSERT_EQ(file.Read(folder / "a.ini"), Result::kRead);
  const std::vector<std::pair<std::wstring, std::wstring>> cases = {
      {L"jpeg", L"70"},    {L"QUOTED", L" a "},   {L"single", L"b"},   {L"half", L"\"c"}, {L"empty", L""},
      {L"nested", L"'d'"}, {L"umläut", L"ö=1;2"}, {L"multi", L"<<<X"}, {L"late", L"1"}};
  for (const auto& [key, value] : cases) EXPECT_EQ(file.Find(L"gEnErAl", key), value);
  EXPECT_EQ(file.Find(L"General", L"missing"), std::nullopt);
  EXPECT_EQ(file.Find(L"Other", L"jpeg"), std::nullopt);
  EXPECT_EQ(file.GetInteger(L"General", L"empty", 7), 0);
}

TEST(IniFileTest, WhatIsNotKnownSurvivesAWrite) {
  const test::TemporaryFolder folder;
  test::WriteBytes(
      folder / "a.ini",
      "\xEF\xBB\xBF; of mine\r\n\r\n[General]\r\nother=\" kept \"\r\njpeg=70\r\ntwice=1\r\ntwice=2\r\n\r\n"
      "[Foreign]\r\nx=\xC3\xB6\r\n");
  IniFile file;
  ASSERT_EQ(file.Read(folder / "a.ini"), Result::kRead);
  ASSERT_FALSE(file.Set(L"general", L"JPEG", L"90") || file.Set(L"New", L"key", L"value"));
  ASSERT_FALSE(file.Write(folder / "a.ini"));
  EXPECT_EQ(test::ReadBytes(folder / "a.ini"),
            "\xEF\xBB\xBF; of mine\r\n\r\n[General]\r\nother = \" kept \"\r\nJPEG = 90\r\n"
            "twice = 1\r\ntwice = 2\r\n\r\n[Foreign]\r\nx = \xC3\xB6\r\n\r\n[New]\r\nkey = value\r\n");
}

TEST(IniFileTest, RefusesWhatItCannotUnderstand) {
  const test::TemporaryFolder folder;
  IniFile file;
  EXPECT_EQ(file.Read(folder / "missing.ini"), Result::kMissing);
  EXPECT_EQ(file.Read(folder.path()), Result::kFailed);
  EXPECT_EQ(file.cause(), "Is a directory");
  test::WriteBytes(folder / "large.ini", "[General]\njpeg=70\n");
  std::filesystem::resize_file(folder / "large.ini", (16U << 20U) + 1);
  EXPECT_EQ(file.Read(folder / "large.ini"), Result::kFailed);
  EXPECT_EQ(file.Find(L"General", L"jpeg"), std::nullopt);
  EXPECT_TRUE(file.Write(folder / "no folder" / "a.ini"));
  EXPECT_EQ(file.cause(), "No such file or directory");
}

TEST(IniFileTest, ReadsTheLeadingInteger) {
  for (const wchar_t* text : {L"abc", L"", L"0x10", L"-"}) EXPECT_EQ(LeadingInteger(text), 0) << text;
  const std::vector<std::pair<std::wstring, int>> cases = {{L"85", 85},
                                                           {L" \t-5x", -5},
                                                           {L"+7.9", 7},
                                                           {L"4294967291", -5},
                                                           {L"2147483648", -2147483647 - 1},
                                                           {L"99999999999999999999", 2147483647},
                                                           {L"-99999999999", -2147483647 - 1}};
  for (const auto& [text, number] : cases) EXPECT_EQ(LeadingInteger(text), number) << number;
}

}  // namespace mirellon::base
