// The user-visible texts in English, by number.
#pragma once

#include <span>

namespace mirellon::settings {

struct TextRow {
  int number;  // the key in a language file is "string" and this number
  const wchar_t* english;
};

inline constexpr int kFirstOwnText = 161;  // translations made before know the texts below it only
inline constexpr int kLastText = 400;

// In ascending order of their numbers: the first below kFirstOwnText, the second from it on.
[[nodiscard]] std::span<const TextRow> TextTable();
[[nodiscard]] std::span<const TextRow> OwnTextTable();

// Empty for a number that has no text.
[[nodiscard]] const wchar_t* EnglishText(int number);

}  // namespace mirellon::settings
