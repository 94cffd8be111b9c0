// Wide texts with a fixed capacity, and their UTF-8 forms.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mirellon::base {

// Capacities in characters, the terminator counted: one less remains for the text itself.
inline constexpr std::size_t kLongTextCapacity = 1024;  // paths, composed texts, language texts
inline constexpr std::size_t kShortTextCapacity = 128;  // EXIF texts, camera names, ISO texts

// The text cut to what a buffer of that capacity can hold.
[[nodiscard]] std::wstring CutText(std::wstring_view text, std::size_t capacity);

// UTF-8 to wide and back. Malformed input becomes U+FFFD, one for each byte that cannot be part of a
// character.
[[nodiscard]] std::wstring WideFromUtf8(std::string_view text);
[[nodiscard]] std::string Utf8FromWide(std::wstring_view text);
[[nodiscard]] bool IsValidUtf8(std::string_view text);

// Text of unknown encoding, as cameras write it: UTF-8 when it is valid as such, else Latin-1.
[[nodiscard]] std::wstring WideFromNarrow(std::string_view text);

// A name for messages: control characters and whatever else ends a line replaced by '?', malformed UTF-8 by
// U+FFFD.
[[nodiscard]] std::string PrintableName(std::string_view name);

}  // namespace mirellon::base
