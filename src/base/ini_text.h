// The text of an ini file as the library itself reads and writes it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace mirellon::base {

// Sections, keys and values in memory. Unlike IniFile it keeps quotes as part of a value and knows values of
// several lines ("key = <<<TAG", lines, "TAG"). Names of sections and of keys that differ in case only
// are different names; what is looked for is first the name as it is, then any that differs in case (A to Z)
// only. Of a key that stands several times in a section, the first counts. Text that is not UTF-8 is read as
// Latin-1.
class IniText {
 public:
  IniText();
  ~IniText();
  IniText(const IniText&) = delete;
  IniText& operator=(const IniText&) = delete;

  // Replaces the content. True = failed: UTF-16, or memory refused; the content is empty then.
  [[nodiscard]] bool Parse(std::string_view text);

  // Null when section or key is missing; an empty text is a value. Valid until the next Parse or Add. Of the
  // sections that came by Add, only the name as it is is found.
  [[nodiscard]] const wchar_t* Find(const std::wstring& section, const wchar_t* key) const;
  [[nodiscard]] bool HasSection(const std::wstring& section) const;
  [[nodiscard]] std::size_t SectionCount() const;

  // Adds a value behind those that the key has already. True = failed (memory).
  [[nodiscard]] bool Add(const std::wstring& section, const wchar_t* key, const std::wstring& value);

  // UTF-8 with a byte-order mark, lines ended by CR LF, a blank line between sections; sections and keys in
  // the order in which they came. Empty when memory is refused.
  [[nodiscard]] std::string Text() const;

 private:
  struct Content;
  std::unique_ptr<Content> content_;
};

}  // namespace mirellon::base
