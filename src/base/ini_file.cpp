#include "base/ini_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>

// The package's library holds no wide-character form, so the parser is instantiated here.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include "base/checked_file.h"
#include "base/file_descriptor.h"
#include "base/text.h"

namespace mirellon::base {

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr wchar_t kReplacement = 0xFFFD;

// The parser's texts end at a NUL, so one within the file would hide all that follows.
std::wstring WideFromFile(std::string_view text) {
  std::wstring wide = WideFromNarrow(text);
  std::replace(wide.begin(), wide.end(), L'\0', kReplacement);
  return wide;
}

// What the parser wants of a converter between the file's bytes and wide texts.
class Utf8Converter {
 public:
  explicit Utf8Converter(bool /*storeIsUtf8*/) {}

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

using Parser = CSimpleIniTempl<wchar_t, SI_GenericNoCase<wchar_t>, Utf8Converter>;

// Collects the text with the line ends asked for, and one blank line, not two, between sections.
class TextWriter : public Parser::OutputWriter {
 public:
  TextWriter(std::string& text, bool carriageReturns) : text_(text), carriageReturns_(carriageReturns) {}

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

bool IsUtf16(std::string_view text) {
  return text.substr(0, 2) == "\xFF\xFE" || text.substr(0, 2) == "\xFE\xFF";
}

}  // namespace

struct IniFile::Content {
  Parser parser{true, true, false};  // UTF-8, repeated keys kept, no values of several lines
  bool byteOrderMark = false;
  bool carriageReturns = false;
};

IniFile::IniFile() : content_(std::make_unique<Content>()) {}
IniFile::~IniFile() = default;

IniFile::ReadResult IniFile::Read(const std::filesystem::path& file) {
  content_ = std::make_unique<Content>();
  cause_.clear();
  FileDescriptor descriptor;
  std::string text;
  int error = OpenForReading(file, descriptor);
  if (error == ENOENT || error == ENOTDIR) return ReadResult::kMissing;
  if (error == 0) error = ReadWhole(descriptor.get(), kLargestFile, text);
  if (error != 0) {
    cause_ = ErrorText(error);
    return ReadResult::kFailed;
  }
  content_->byteOrderMark = std::string_view(text).substr(0, kByteOrderMark.size()) == kByteOrderMark;
  content_->carriageReturns = text.find("\r\n") != std::string::npos;
  if (IsUtf16(text) || content_->parser.LoadData(text.data(), text.size()) < 0) {
    cause_ = "not a text of sections and keys";
    content_ = std::make_unique<Content>();
    return ReadResult::kFailed;
  }
  return ReadResult::kRead;
}

bool IniFile::Write(const std::filesystem::path& file) {
  std::string text(content_->byteOrderMark ? kByteOrderMark : "");
  TextWriter writer(text, content_->carriageReturns);
  int error = ENOMEM;
  if (content_->parser.Save(writer, false) >= 0) error = ReplaceFile(file, text);
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
  return content_->parser.SetValue(section.c_str(), key.c_str(), value.c_str(), nullptr, true) < 0;
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
