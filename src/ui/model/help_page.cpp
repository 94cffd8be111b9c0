#include "ui/model/help_page.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/text.h"

namespace mirellon::ui {

namespace {

constexpr std::uintmax_t kMostBytes = 4 << 20;
constexpr std::string_view kOpen = "{{string";
constexpr std::string_view kShut = "}}";

// What texts of menus and captions end in. Some languages put a blank before a colon that does not break.
constexpr std::array<std::wstring_view, 11> kEndings{
    L"Ctrl+O", L"Ctrl+S", L"F1", L"...", L"\u2026", L":", L"\uFF1A", L" ", L"\u00A0", L"\u202F", L";"};

void CutEndings(std::wstring& text) {
  for (bool cut = true; cut;) {
    cut = false;
    for (const std::wstring_view ending : kEndings) {
      if (text.size() > ending.size() && text.ends_with(ending)) {
        text.resize(text.size() - ending.size());
        cut = true;
      }
    }
  }
}

// "&File" is read as "File", "ファイル(&F)" without its last three letters, "&&" as "&".
void CutMenuKey(std::wstring& text) {
  for (std::size_t at = text.find(L'&'); at != std::wstring::npos && at + 1 < text.size();
       at = text.find(L'&', at + 1)) {
    const bool inBrackets = at > 0 && text[at - 1] == L'(' && at + 2 < text.size() && text[at + 2] == L')';
    if (inBrackets) {
      text.erase(at - 1, 4);
      at = std::max<std::size_t>(at, 2) - 2;
    } else {
      text.erase(at, 1);
    }
  }
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Unescaped(std::string text) {
  constexpr std::array<std::pair<std::string_view, char>, 4> kEntities{
      {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}}};
  for (const auto& [entity, sign] : kEntities) {
    for (std::size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1)) {
      text.replace(at, entity.size(), 1, sign);
    }
  }
  return text;
}

std::string Filled(std::string_view page, const settings::Localization& localization) {
  std::string html;
  for (std::size_t from = 0; from < page.size();) {
    const std::size_t at = std::min(page.find(kOpen, from), page.size());
    html += page.substr(from, at - from);
    const std::size_t shut = page.find(kShut, at);
    if (shut == std::string_view::npos) {
      html += page.substr(at);
      break;
    }
    const std::string_view digits = page.substr(at + kOpen.size(), shut - at - kOpen.size());
    int number = 0;
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const std::string text = QuotedText(localization, number);
    from = shut + kShut.size();
    html += text.empty() ? std::string(page.substr(at, from - at)) : Escaped(text);
  }
  return html;
}

// The text between two marks from `at` on, which moves behind the second.
std::string_view Between(std::string_view html, std::string_view first, std::string_view second,
                         std::size_t& at) {
  const std::size_t begin = html.find(first, at);
  const std::size_t end = begin == std::string_view::npos ? begin : html.find(second, begin + first.size());
  at = end == std::string_view::npos ? html.size() : end + second.size();
  if (end == std::string_view::npos) return {};
  return html.substr(begin + first.size(), end - begin - first.size());
}

std::vector<HelpSection> SectionsOf(std::string_view html) {
  std::vector<HelpSection> sections;
  for (std::size_t at = html.find("<h"); at != std::string_view::npos; at = html.find("<h", at + 2)) {
    constexpr std::string_view kHeading = "<h1><a name=\"";
    const std::string_view head = html.substr(at, kHeading.size());
    if (head.size() < kHeading.size() || head[2] < '1' || head[2] > '3' ||
        head.substr(3) != kHeading.substr(3))
      continue;
    HelpSection section;
    section.level = head[2] - '0';
    std::size_t from = at;
    section.anchor = Between(html, "name=\"", "\"", from);
    section.title = Unescaped(std::string(Between(html, ">", "</a>", from)));
    sections.push_back(section);
  }
  return sections;
}

}  // namespace

std::string QuotedText(const settings::Localization& localization, int number) {
  std::wstring text = localization.Text(number);
  CutMenuKey(text);
  CutEndings(text);
  for (wchar_t& c : text) {
    if (c == L';' || c == L'\n') c = L' ';
  }
  return base::Utf8FromWide(text);
}

HelpPage MakeHelpPage(std::string_view page, const settings::Localization& localization) {
  HelpPage made;
  made.html = Filled(page, localization);
  made.sections = SectionsOf(made.html);
  return made;
}

std::optional<HelpPage> ReadHelpPage(const std::filesystem::path& file,
                                     const settings::Localization& localization) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  if (error || size == 0 || size > kMostBytes) return std::nullopt;
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (stream.bad() || text.empty()) return std::nullopt;
  return MakeHelpPage(text, localization);
}

}  // namespace mirellon::ui
