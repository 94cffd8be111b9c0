// Small text files of sections and keys ("ini" files).
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace mirellon::base {

// One file's content in memory. Section and key names are compared without case (A to Z); blanks around a
// value and one pair of quotes around the rest are not part of it; of a key that stands several times in a
// section, the first counts. Text that is not UTF-8 is read as Latin-1. What the program does not know
// survives a Write, comments included; so do a byte-order mark and the kind of line ends. Lines that are
// neither section, nor key with "=", nor comment do not.
class IniFile {
 public:
  enum class ReadResult {
    kRead,
    kMissing,  // no such file; the content is empty
    kFailed,   // unreadable, over 16 MB, not such a text at all, or memory refused; the content is empty
  };

  IniFile();
  ~IniFile();
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;

  [[nodiscard]] ReadResult Read(const std::filesystem::path& file);
  // Writes checked and in one step (see CheckedFile). True = failed.
  [[nodiscard]] bool Write(const std::filesystem::path& file);
  // Whether what the last Read met holds more than a Write would bring back: too large, no text of that kind,
  // malformed UTF-8, or lines of no kind. Who is about to write over it keeps a copy first (KeepCopy).
  [[nodiscard]] bool damaged() const { return damaged_; }
  // Why the last Read or Write failed, in English, without a full stop.
  [[nodiscard]] const std::string& cause() const { return cause_; }

  // Nothing when the key is missing; an empty text is a value.
  [[nodiscard]] std::optional<std::wstring> Find(const std::wstring& section, const std::wstring& key) const;
  // The value's leading decimal number (see LeadingInteger), `fallback` when the key is missing.
  [[nodiscard]] int GetInteger(const std::wstring& section, const std::wstring& key, int fallback) const;

  // Replaces the value, or adds key and section. The value must not hold line ends. True = failed (memory).
  [[nodiscard]] bool Set(const std::wstring& section, const std::wstring& key, const std::wstring& value);

 private:
  [[nodiscard]] ReadResult ReadContent(const std::filesystem::path& file);

  struct Content;
  std::unique_ptr<Content> content_;
  std::string cause_;
  bool damaged_ = false;
};

// The decimal number at the head of a text, after blanks and with an optional sign; 0 when there is none.
// Numbers up to 32 unsigned bits wrap, so that a negative one written as unsigned reads back as it was;
// larger ones stay at the end of the range.
[[nodiscard]] int LeadingInteger(std::wstring_view text);

}  // namespace mirellon::base
