#include "profiles/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>

namespace mirellon::profiles {

namespace {

constexpr std::int64_t kFarExponent = std::int64_t{1} << 40U;

bool IsBlank(wchar_t character) {
  return character == L' ' || (character >= L'\t' && character <= L'\r');
}

bool IsDigit(wchar_t character) {
  return character >= L'0' && character <= L'9';
}

// Takes blanks and a sign off the head; true for a minus.
bool TakeSign(std::wstring_view& text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == L'-';
  if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
  return negative;
}

std::size_t CountDigits(std::wstring_view text) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
}

// How long the number at the head is, sign excluded: digits, a point among them, and an exponent that has
// digits. 0 without any digit.
std::size_t NumberLength(std::wstring_view text) {
  std::size_t length = CountDigits(text);
  std::size_t digits = length;
  if (length < text.size() && text[length] == L'.') {
    const std::size_t decimals = CountDigits(text.substr(length + 1));
    digits += decimals;
    length += 1 + decimals;
  }
  if (digits == 0) return 0;
  if (length < text.size() && (text[length] == L'e' || text[length] == L'E')) {
    std::size_t exponent = length + 1;
    if (exponent < text.size() && (text[exponent] == L'-' || text[exponent] == L'+')) ++exponent;
    const std::size_t exponentDigits = CountDigits(text.substr(std::min(exponent, text.size())));
    if (exponentDigits > 0) length = exponent + exponentDigits;
  }
  return length;
}

// Whether a number that no double can hold is too large rather than too small: where its first digit above
// 0 stands, the exponent counted in.
bool IsHuge(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const std::size_t first = mantissa.find_first_of("123456789");
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  std::int64_t exponent = 0;
  if (mark < number.size()) {
    const std::string_view digits = number.substr(mark + (number[mark + 1] == '+' ? 2 : 1));
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (error != std::errc()) return digits.front() != '-';
    // Beyond any text's length; the smallest of all has no positive counterpart.
    exponent = std::clamp(exponent, -kFarExponent, kFarExponent);
  }
  return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) > -exponent;
}

}  // namespace

std::int32_t ClampedInteger(std::wstring_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const bool negative = TakeSign(text);
  std::int64_t number = 0;
  for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) {
    number = std::min(number * 10 + (text.front() - L'0'), std::int64_t{1} << 40U);
  }
  if (negative) number = -number;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

double LeadingDecimal(std::wstring_view text) {
  const bool negative = TakeSign(text);
  std::string number;
  for (const wchar_t character : text.substr(0, NumberLength(text))) {
    number.push_back(static_cast<char>(character));
  }
  if (number.empty()) return 0.0;
  double value = 0.0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    value = IsHuge(number) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return negative ? -value : value;
}

std::wstring IntegerText(std::uint32_t value) {
  return std::to_wstring(static_cast<std::int32_t>(value));
}

std::wstring DecimalText(double value, int decimals) {
  std::array<char, 512> buffer{};  // the largest double has 309 digits before the point
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals);
  return error == std::errc() ? std::wstring(buffer.data(), end) : std::wstring();
}

}  // namespace mirellon::profiles
