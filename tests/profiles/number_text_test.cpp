#include "profiles/number_text.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace mirellon::profiles {

TEST(NumberTextTest, TheHeadOfATextIsItsNumber) {
  constexpr double kEndless = std::numeric_limits<double>::infinity();
  const std::vector<std::pair<std::wstring, double>> cases = {
      {L"", 0.0},
      {L".", 0.0},
      {L"-", 0.0},
      {L"inf", 0.0},
      {L"e5", 0.0},
      {L" \t+.5x", 0.5},
      {L"-2.", -2.0},
      {L"1.5.5", 1.5},
      {L"1e", 1.0},
      {L"1e+", 1.0},
      {L"2E+1", 20.0},
      {L"0e999", 0.0},
      {L"-1e999", -kEndless},
      {L"1e-999", 0.0},
      {L"1e99999999999999999999", kEndless},
      {L"1e-99999999999999999999", 0.0},
      {L"1e-9223372036854775808", 0.0},  // the lowest of 64 bits
      {L"1e9223372036854775807", kEndless},
      {std::wstring(400, L'9'), kEndless},
      {L"." + std::wstring(400, L'0') + L"1", 0.0},
      {L"." + std::wstring(400, L'0') + L"1e405", 1e4},
      {L"." + std::wstring(400, L'0') + L"1e999", kEndless},
  };
  for (const auto& [text, number] : cases) EXPECT_EQ(LeadingDecimal(text), number) << text;
  const std::vector<std::pair<std::wstring, std::int32_t>> integers = {
      {L" 12.9", 12},
      {L"-7x", -7},
      {L"+3", 3},
      {L"x1", 0},
      {L"2147483648", 2147483647},
      {L"-99999999999999999999", -2147483648}};
  for (const auto& [text, number] : integers) EXPECT_EQ(ClampedInteger(text), number) << text;
}

}  // namespace mirellon::profiles
