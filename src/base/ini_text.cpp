#include "base/ini_text.h"

#include <algorithm>
#include <cwchar>
#include <new>
#include <vector>

#include "base/ini_parser.h"

namespace mirellon::base {

struct IniText::Content {
  using Keys = SpelledIniParser::TKeyVal;

  // Null when there is none.
  [[nodiscard]] const Keys* Section(const std::wstring& name) const {
    if (const Keys* exact = parser.GetSection(name.c_str()); exact != nullptr) return exact;
    const auto found = std::lower_bound(
        sections.begin(), sections.end(), FirstSpelling(name),
        [](const wchar_t* a, const std::wstring& b) { return SpellingOrder()(a, b.c_str()); });
    return found != sections.end() && CompareNames(*found, name.c_str()) == 0 ? parser.GetSection(*found)
                                                                              : nullptr;
  }

  SpelledIniParser parser{true, true, true};  // UTF-8, repeated keys kept, values of several lines
  std::vector<const wchar_t*> sections;       // the names of those that were parsed, in SpellingOrder
};

IniText::IniText() : content_(std::make_unique<Content>()) {}
IniText::~IniText() = default;

bool IniText::Parse(std::string_view text) {
  content_->parser.Reset();
  content_->sections.clear();
  if (IsUtf16(text)) return true;
  try {
    if (content_->parser.LoadData(text.data(), text.size()) < 0) return true;
    SpelledIniParser::TNamesDepend names;
    content_->parser.GetAllSections(names);
    content_->sections.reserve(names.size());
    for (const SpelledIniParser::Entry& name : names) content_->sections.push_back(name.pItem);
    return false;
  } catch (const std::bad_alloc&) {
    content_->parser.Reset();
    content_->sections.clear();
  }
  return true;
}

const wchar_t* IniText::Find(const std::wstring& section, const wchar_t* key) const {
  const Content::Keys* keys = content_->Section(section);
  if (keys == nullptr) return nullptr;
  auto found = keys->lower_bound(key);
  if (found != keys->end() && std::wcscmp(found->first.pItem, key) == 0) return found->second;
  found = keys->lower_bound(FirstSpelling(key).c_str());
  return found != keys->end() && CompareNames(found->first.pItem, key) == 0 ? found->second : nullptr;
}

bool IniText::HasSection(const std::wstring& section) const {
  return content_->Section(section) != nullptr;
}

std::size_t IniText::SectionCount() const {
  return content_->sections.size();
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
    SpelledIniTextWriter writer(text, /*carriageReturns=*/true);
    if (content_->parser.Save(writer, /*a_bAddSignature=*/false) >= 0) return text;
  } catch (const std::bad_alloc&) {
  }
  return {};
}

}  // namespace mirellon::base
