#include "base/text.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace mirellon::base {

struct Pair {
  std::string_view narrow;
  std::wstring_view wide;
};

TEST(Text, ValidTextGoesThereAndBack) {
  using namespace std::string_view_literals;
  // The least and the largest of two, three and four bytes, and around the surrogates.
  const Pair pairs[] = {{"", L""},
                        {"plain", L"plain"},
                        {"a\0b"sv, L"a\0b"sv},
                        {"\xEF\xBF\xBF", L"\uFFFF"},
                        {"\xC2\x80\xDF\xBF", L"\u0080\u07FF"},
                        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
                        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80", L"\u0800\uD7FF\uE000"},
                        {"\xC3\xA9t\xC3\xA9", L"été"}};
  for (const Pair& pair : pairs) {
    EXPECT_EQ(WideFromUtf8(pair.narrow), pair.wide) << pair.narrow;
    EXPECT_EQ(Utf8FromWide(pair.wide), pair.narrow);
    EXPECT_TRUE(IsValidUtf8(pair.narrow)) << pair.narrow;
    EXPECT_EQ(WideFromNarrow(pair.narrow), pair.wide);
  }
}

// Cut short, longer than need be, surrogates, past the last character, bytes that begin nothing.
TEST(Text, MalformedBytesAreReplacedOneByOne) {
  const Pair pairs[] = {{"a\x80z", L"a\uFFFDz"},
                        {"\xC3", L"\uFFFD"},
                        {"\xE6\x97z", L"\uFFFD\uFFFDz"},
                        {"\xC3\xC3\xA9", L"\uFFFDé"},
                        {"\xC0\xAF", L"\uFFFD\uFFFD"},
                        {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},
                        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
                        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
                        {"\xF8\x88", L"\uFFFD\uFFFD"},
                        {"\xFF\xFE", L"\uFFFD\uFFFD"}};
  for (const Pair& pair : pairs) {
    EXPECT_EQ(WideFromUtf8(pair.narrow), pair.wide);
    EXPECT_FALSE(IsValidUtf8(pair.narrow));
  }
}

TEST(Text, WideTextThatIsNoTextIsReplaced) {
  const auto high = static_cast<wchar_t>(0xD83D);
  const auto low = static_cast<wchar_t>(0xDE00);
  EXPECT_EQ(Utf8FromWide(std::wstring{L'a', low, high}), "a\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromWide(std::wstring{high, low}), "\xF0\x9F\x98\x80") << "a pair is one character";
}

TEST(Text, NamesForMessagesHoldNoControls) {
  EXPECT_EQ(PrintableName("a\nb\x1B[1m\x7F"), "a?b?[1m?");
  EXPECT_EQ(PrintableName("a\xC2\x85\xC2\x9B\xC2\xA0\xE2\x80\xA8\xE2\x80\xA9"), "a??\xC2\xA0??");
  EXPECT_EQ(PrintableName("\xC3\xA9.jpg"), "\xC3\xA9.jpg");
  EXPECT_EQ(PrintableName("bad\xFF"), "bad\xEF\xBF\xBD");
}

}  // namespace mirellon::base
