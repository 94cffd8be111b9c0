#include "base/text.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace mirellon::base {
namespace {

TEST(Text, CutsToWhatABufferHolds) {
  EXPECT_EQ(CutText(L"camera", 128), L"camera");
  EXPECT_EQ(CutText(L"camera", 7), L"camera");
  EXPECT_EQ(CutText(L"camera", 6), L"camer");
  EXPECT_EQ(CutText(L"camera", 1), L"");
  EXPECT_EQ(CutText(L"camera", 0), L"");
  EXPECT_EQ(CutText(std::wstring(5000, L'x'), kShortTextCapacity).size(), 127U);
  EXPECT_EQ(CutText(std::wstring(5000, L'x'), kLongTextCapacity).size(), 1023U);
}

struct Pair {
  std::string_view narrow;
  std::wstring_view wide;
};

TEST(Text, ValidTextGoesThereAndBack) {
  using namespace std::string_view_literals;
  const Pair pairs[] = {
      {"", L""},
      {"plain", L"plain"},
      {"a\0b"sv, L"a\0b"sv},
      {"\xC2\x80\xDF\xBF", L"\u0080\u07FF"},                            // least and largest of two bytes
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80", L"\u0800\uD7FF\uE000"},  // three, around the surrogates
      {"\xEF\xBF\xBF", L"\uFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},  // four
      {"\xC3\xA9t\xC3\xA9 \xE6\x97\xA5", L"été 日"},
  };
  for (const Pair& pair : pairs) {
    EXPECT_EQ(WideFromUtf8(pair.narrow), pair.wide) << pair.narrow;
    EXPECT_EQ(Utf8FromWide(pair.wide), pair.narrow);
    EXPECT_TRUE(IsValidUtf8(pair.narrow)) << pair.narrow;
    EXPECT_EQ(WideFromNarrow(pair.narrow), pair.wide);
  }
}

TEST(Text, MalformedBytesAreReplacedOneByOne) {
  const Pair pairs[] = {
      {"a\x80z", L"a\uFFFDz"},                            // a continuation alone
      {"\xC3", L"\uFFFD"},                                // cut short
      {"\xE6\x97", L"\uFFFD\uFFFD"},                      // cut short
      {"\xE6\x97z", L"\uFFFD\uFFFDz"},                    // cut short by another character
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // longer than need be
      {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},            // longer than need be
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past the last character
      {"\xF8\x88\x80\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xFF\xFE", L"\uFFFD\uFFFD"},
      {"\xC3\xC3\xA9", L"\uFFFDé"},  // the next character survives
  };
  for (const Pair& pair : pairs) {
    EXPECT_EQ(WideFromUtf8(pair.narrow), pair.wide);
    EXPECT_FALSE(IsValidUtf8(pair.narrow));
  }
}

TEST(Text, WideTextThatIsNoTextIsReplaced) {
  const auto lone = static_cast<wchar_t>(0xD800);
  const auto low = static_cast<wchar_t>(0xDC00);
  EXPECT_EQ(Utf8FromWide(std::wstring{L'a', lone}), "a\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(std::wstring{low, lone}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}),
            "\xF0\x9F\x98\x80");  // a pair is one character, whatever the width of wchar_t
  if constexpr (sizeof(wchar_t) == 4) {
    EXPECT_EQ(Utf8FromWide(std::wstring{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)}),
              "\xEF\xBF\xBD\xEF\xBF\xBD");
  }
}

TEST(Text, UnknownEncodingFallsBackToLatin1) {
  EXPECT_EQ(WideFromNarrow("caf\xE9"), L"café");
  EXPECT_EQ(WideFromNarrow("\xFF\x80"), L"\u00FF\u0080");
}

TEST(Text, NamesForMessagesHoldNoControls) {
  EXPECT_EQ(PrintableName("a\nb\x1B[1m\x7F"), "a?b?[1m?");
  EXPECT_EQ(PrintableName("a\xC2\x85\xC2\x9B\xC2\xA0\xE2\x80\xA8\xE2\x80\xA9"), "a??\xC2\xA0??");
  EXPECT_EQ(PrintableName("\xC3\xA9.jpg"), "\xC3\xA9.jpg");
  EXPECT_EQ(PrintableName("bad\xFF"), "bad\xEF\xBF\xBD");
}

}  // namespace
}  // namespace mirellon::base
