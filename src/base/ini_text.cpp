#include "base/ini_text.h"

#include <new>

#include "base/ini_parser.h"

namespace mirellon::base {

struct IniText::Content {
  IniParser parser{true, true, true};  // UTF-8, repeated keys kept, values of several lines
};

IniText::IniText() : content_(std::make_unique<Content>()) {}
IniText::~IniText() = default;

bool IniText::Parse(std::string_view text) {
  content_->parser.Reset();
  if (IsUtf16(text)) return true;
  try {
    if (content_->parser.LoadData(text.data(), text.size()) >= 0) return false;
  } catch (const std::bad_alloc&) {
    content_->parser.Reset();
  }
  return true;
}

const wchar_t* IniText::Find(const std::wstring& section, const wchar_t* key) const {
  return content_->parser.GetValue(section.c_str(), key, nullptr);
}

bool IniText::HasSection(const std::wstring& section) const {
  return content_->parser.GetSection(section.c_str()) != nullptr;
}

std::size_t IniText::SectionCount() const {
  IniParser::TNamesDepend sections;
  content_->parser.GetAllSections(sections);
  return sections.size();
}

bool IniText::Add(const std::wstring& section, const wchar_t* key, const std::wstring& value) {
  try {
    return content_->parser.SetValue(section.c_str(), key, value.c_str()) < 0;
  } catch (const std::bad_alloc&) {
    return true;
  }
}

std::string IniText::Text() const {
  try {
    std::string text(kByteOrderMark);
    IniTextWriter writer(text, /*carriageReturns=*/true);
    if (content_->parser.Save(writer, /*a_bAddSignature=*/false) >= 0) return text;
  } catch (const std::bad_alloc&) {
  }
  return {};
}

}  // namespace mirellon::base
