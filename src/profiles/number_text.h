// Numbers as profile files and photographs write them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mirellon::profiles {

// The decimal number at the head of a text, after blanks and with an optional sign; 0 when there is none.
// No locale has a say. Beyond the type's range its nearest end; a real number beyond it is infinite.
[[nodiscard]] std::int32_t ClampedInteger(std::wstring_view text);
[[nodiscard]] double LeadingDecimal(std::wstring_view text);

// "%i": all 32 bits as a signed number.
[[nodiscard]] std::wstring IntegerText(std::uint32_t value);
// "%.1f", "%.2f" ...: with a point whatever the locale.
[[nodiscard]] std::wstring DecimalText(double value, int decimals);

}  // namespace mirellon::profiles
