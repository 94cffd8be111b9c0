#include "base/text.h"

#include <algorithm>
#include <cstdint>

namespace mirellon::base {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// One character decoded from the head of a text; length 0 marks a malformed byte.
struct Decoded {
  char32_t character;
  std::size_t length;
};

Decoded DecodeSequence(std::string_view text, std::size_t length, char32_t first, char32_t least) {
  if (text.size() < length) return {kReplacement, 0};
  char32_t character = first;
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<std::uint8_t>(text[i]);
    if ((byte & 0xC0U) != 0x80U) return {kReplacement, 0};
    character = (character << 6U) | (byte & 0x3FU);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < least || character > 0x10FFFF || surrogate) return {kReplacement, 0};
  return {character, length};
}

Decoded DecodeHead(std::string_view text) {
  const auto byte = static_cast<std::uint8_t>(text.front());
  if (byte < 0x80) return {byte, 1};
  if ((byte & 0xE0U) == 0xC0U) return DecodeSequence(text, 2, byte & 0x1FU, 0x80);
  if ((byte & 0xF0U) == 0xE0U) return DecodeSequence(text, 3, byte & 0x0FU, 0x800);
  if ((byte & 0xF8U) == 0xF0U) return DecodeSequence(text, 4, byte & 0x07U, 0x10000);
  return {kReplacement, 0};
}

void AppendWide(std::wstring& text, char32_t character) {
  if constexpr (sizeof(wchar_t) == 2) {
    if (character >= 0x10000) {
      text.push_back(static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10U)));
      text.push_back(static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FFU)));
      return;
    }
  }
  text.push_back(static_cast<wchar_t>(character));
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto push = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    push(character);
  } else if (character < 0x800) {
    push(0xC0U | (character >> 6U));
    push(0x80U | (character & 0x3FU));
  } else if (character < 0x10000) {
    push(0xE0U | (character >> 12U));
    push(0x80U | ((character >> 6U) & 0x3FU));
    push(0x80U | (character & 0x3FU));
  } else {
    push(0xF0U | (character >> 18U));
    push(0x80U | ((character >> 12U) & 0x3FU));
    push(0x80U | ((character >> 6U) & 0x3FU));
    push(0x80U | (character & 0x3FU));
  }
}

// Controls, of which those above ASCII move a terminal's cursor too, and the separators of lines.
bool BreaksALine(wchar_t unit) {
  const auto character = static_cast<char32_t>(unit);
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 ||
         character == 0x2029;
}

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

std::wstring CutText(std::wstring_view text, std::size_t capacity) {
  return std::wstring(text.substr(0, capacity == 0 ? 0 : capacity - 1));
}

std::wstring WideFromUtf8(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const Decoded decoded = DecodeHead(text);
    AppendWide(wide, decoded.character);
    text.remove_prefix(std::max<std::size_t>(decoded.length, 1));
  }
  return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto character = static_cast<char32_t>(text[i]);
    if (IsHighSurrogate(character) && i + 1 < text.size() &&
        IsLowSurrogate(static_cast<char32_t>(text[i + 1]))) {
      character = 0x10000 + ((character - 0xD800) << 10U) + (static_cast<char32_t>(text[++i]) - 0xDC00);
    }
    const bool lone = IsHighSurrogate(character) || IsLowSurrogate(character);
    AppendUtf8(narrow, lone || character > 0x10FFFF ? kReplacement : character);
  }
  return narrow;
}

bool IsValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const Decoded decoded = DecodeHead(text);
    if (decoded.length == 0) return false;
    text.remove_prefix(decoded.length);
  }
  return true;
}

std::wstring WideFromNarrow(std::string_view text) {
  if (IsValidUtf8(text)) return WideFromUtf8(text);
  std::wstring wide;
  wide.reserve(text.size());
  for (const char byte : text) wide.push_back(static_cast<wchar_t>(static_cast<std::uint8_t>(byte)));
  return wide;
}

std::string PrintableName(std::string_view name) {
  std::wstring printable = WideFromUtf8(name);
  std::replace_if(printable.begin(), printable.end(), BreaksALine, L'?');
  return Utf8FromWide(printable);
}

}  // namespace mirellon::base
