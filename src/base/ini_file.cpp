#include "base/ini_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <new>

#include "base/checked_file.h"
#include "base/file_descriptor.h"
#include "base/ini_parser.h"
#include "base/text.h"

namespace mirellon::base {

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;

bool IsBlank(wchar_t character) {
  return character == L' ' || (character >= L'\t' && character <= L'\r');
}

std::wstring_view TrimBlanks(std::wstring_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::wstring_view StripQuotes(std::wstring_view text) {
  const bool quoted =
      text.size() >= 2 && text.front() == text.back() && (text.front() == L'"' || text.front() == L'\'');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// Blank, comment, section, or key with a value: what the parser keeps.
bool IsKeptLine(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\v\f\r";
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  if (line.empty() || line.front() == ';' || line.front() == '#') return true;
  if (line.front() == '[') return line.find(']') != std::string_view::npos;
  const std::size_t equals = line.find('=');
  return equals != std::string_view::npos && equals != 0;
}

bool SurvivesWriting(std::string_view text) {
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
  const bool binary = text.find('\0') != std::string_view::npos;
  if (binary || !IsValidUtf8(text)) return false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (!IsKeptLine(text.substr(0, end))) return false;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return true;
}

}  // namespace

struct IniFile::Content {
  IniParser parser{true, true, false};  // UTF-8, repeated keys kept, no values of several lines
  bool byteOrderMark = false;
  bool carriageReturns = false;
};

IniFile::IniFile() : content_(std::make_unique<Content>()) {}
IniFile::~IniFile() = default;

IniFile::ReadResult IniFile::Read(const std::filesystem::path& file) {
  try {
    return ReadContent(file);
  } catch (const std::bad_alloc&) {
    content_->parser.Reset();
    cause_ = ErrorText(ENOMEM);
    return ReadResult::kFailed;
  }
}

IniFile::ReadResult IniFile::ReadContent(const std::filesystem::path& file) {
  content_ = std::make_unique<Content>();
  cause_.clear();
  damaged_ = false;
  FileDescriptor descriptor;
  std::string text;
  int error = OpenForReading(file, descriptor);
  if (error == ENOENT || error == ENOTDIR) return ReadResult::kMissing;
  if (error == 0) error = ReadWhole(descriptor.get(), kLargestFile, text);
  if (error != 0) {
    cause_ = ErrorText(error);
    damaged_ = error == EFBIG;
    return ReadResult::kFailed;
  }
  damaged_ = !SurvivesWriting(text);
  content_->byteOrderMark = std::string_view(text).substr(0, kByteOrderMark.size()) == kByteOrderMark;
  content_->carriageReturns = text.find("\r\n") != std::string::npos;
  if (IsUtf16(text) || content_->parser.LoadData(text.data(), text.size()) < 0) {
    cause_ = "not a text of sections and keys";
    content_ = std::make_unique<Content>();
    damaged_ = true;
    return ReadResult::kFailed;
  }
  return ReadResult::kRead;
}

bool IniFile::Write(const std::filesystem::path& file) {
  int error = ENOMEM;
  try {
    std::string text(content_->byteOrderMark ? kByteOrderMark : "");
    IniTextWriter writer(text, content_->carriageReturns);
    if (content_->parser.Save(writer, false) >= 0) error = ReplaceFile(file, text);
  } catch (const std::bad_alloc&) {
    error = ENOMEM;
  }
  cause_ = error == 0 ? "" : ErrorText(error);
  return error != 0;
}

std::optional<std::wstring> IniFile::Find(const std::wstring& section, const std::wstring& key) const {
  const wchar_t* value = content_->parser.GetValue(section.c_str(), key.c_str(), nullptr);
  if (value == nullptr) return std::nullopt;
  return std::wstring(StripQuotes(TrimBlanks(value)));
}

int IniFile::GetInteger(const std::wstring& section, const std::wstring& key, int fallback) const {
  const std::optional<std::wstring> value = Find(section, key);
  return value ? LeadingInteger(*value) : fallback;
}

bool IniFile::Set(const std::wstring& section, const std::wstring& key, const std::wstring& value) {
  try {
    return content_->parser.SetValue(section.c_str(), key.c_str(), value.c_str(), nullptr, true) < 0;
  } catch (const std::bad_alloc&) {
    return true;
  }
}

int LeadingInteger(std::wstring_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == L'-';
  if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
  constexpr std::int64_t kFar = std::int64_t{1} << 40U;
  std::int64_t number = 0;
  for (; !text.empty() && text.front() >= L'0' && text.front() <= L'9'; text.remove_prefix(1)) {
    number = std::min(number * 10 + (text.front() - L'0'), kFar);
  }
  if (negative) number = -number;
  using Limits = std::numeric_limits<std::int32_t>;
  if (number < Limits::min()) return Limits::min();
  if (number > std::numeric_limits<std::uint32_t>::max()) return Limits::max();
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

}  // namespace mirellon::base
