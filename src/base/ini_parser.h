// The library that parses ini files, made to work with wide texts here. Only for the sources that hold a
// parser.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

// The package's library holds no wide-character form, so the parser is instantiated here.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include "base/text.h"

namespace mirellon::base {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The parser's texts end at a NUL, so one within the file would hide all that follows.
inline std::wstring WideFromFile(std::string_view text) {
  std::wstring wide = WideFromNarrow(text);
  std::replace(wide.begin(), wide.end(), L'\0', static_cast<wchar_t>(0xFFFD));
  return wide;
}

// What the parser wants of a converter between the file's bytes and wide texts.
class IniConverter {
 public:
  explicit IniConverter(bool /*storeIsUtf8*/) {}

  static std::size_t SizeFromStore(const char* data, std::size_t size) {
    return WideFromFile({data, size}).size();
  }
  static bool ConvertFromStore(const char* data, std::size_t size, wchar_t* output, std::size_t capacity) {
    const std::wstring wide = WideFromFile({data, size});
    if (wide.size() > capacity) return false;
    std::copy(wide.begin(), wide.end(), output);
    return true;
  }
  static std::size_t SizeToStore(const wchar_t* text) { return Utf8FromWide(text).size() + 1; }
  static bool ConvertToStore(const wchar_t* text, char* output, std::size_t capacity) {
    const std::string narrow = Utf8FromWide(text);
    if (narrow.size() + 1 > capacity) return false;
    std::memcpy(output, narrow.c_str(), narrow.size() + 1);
    return true;
  }
};

// Below, at or above 0, as the names without case (A to Z) compare.
inline int CompareNames(const wchar_t* name, const wchar_t* other) {
  const auto folded = [](wchar_t c) { return c < L'A' || c > L'Z' ? c : c - L'A' + L'a'; };
  while (*name != L'\0' && folded(*name) == folded(*other)) {
    ++name;
    ++other;
  }
  const wchar_t first = folded(*name);
  const wchar_t second = folded(*other);
  return static_cast<int>(first > second) - static_cast<int>(first < second);
}

// Names that differ in case only lie side by side, capitals first.
struct SpellingOrder {
  bool operator()(const wchar_t* name, const wchar_t* other) const {
    const int order = CompareNames(name, other);
    return order != 0 ? order < 0 : std::wcscmp(name, other) < 0;
  }
};

// Spellings of one name are one, or each is another.
using IniParser = CSimpleIniTempl<wchar_t, SI_GenericNoCase<wchar_t>, IniConverter>;
using SpelledIniParser = CSimpleIniTempl<wchar_t, SpellingOrder, IniConverter>;

// The name's first spelling in that order.
inline std::wstring FirstSpelling(std::wstring_view name) {
  std::wstring text(name);
  for (wchar_t& character : text) {
    if (character >= L'a' && character <= L'z') character -= L'a' - L'A';
  }
  return text;
}

// Collects the text with the line ends asked for, and one blank line, not two, between sections.
template <class Parser>
class AnyIniTextWriter : public Parser::OutputWriter {
 public:
  AnyIniTextWriter(std::string& text, bool carriageReturns)
      : text_(text), carriageReturns_(carriageReturns) {}

  void Write(const char* piece) override {
    for (; *piece != '\0'; ++piece) {
      if (*piece != '\n') {
        text_.push_back(*piece);
        lineEnds_ = 0;
      } else if (++lineEnds_ <= 2) {
        text_.append(carriageReturns_ ? "\r\n" : "\n");
      }
    }
  }

 private:
  std::string& text_;
  bool carriageReturns_;
  int lineEnds_ = 0;
};

using IniTextWriter = AnyIniTextWriter<IniParser>;
using SpelledIniTextWriter = AnyIniTextWriter<SpelledIniParser>;

// UTF-16, which some editors save, is none of the encodings that are read.
inline bool IsUtf16(std::string_view text) {
  return text.substr(0, 2) == "\xFF\xFE" || text.substr(0, 2) == "\xFE\xFF";
}

}  // namespace mirellon::base
