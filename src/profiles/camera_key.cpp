#include "profiles/camera_key.h"

#include <array>
#include <cstddef>

#include "base/text.h"

namespace mirellon::profiles {

namespace {

struct Spelling {
  std::wstring_view pattern;
  std::wstring_view replacement;
};

// Blanks count: cameras pad their maker text, and the key keeps that. The longer Kodak pattern comes before
// the shorter one on purpose. Every replacement is shorter than its pattern.
constexpr std::array<Spelling, 16> kSpellings{{
    {L"CASIO COMPUTER CO.,LTD. /", L"CASIO /"},
    {L"Canon / Canon", L"Canon /"},
    {L"OLYMPUS IMAGING CORP.   /", L"OLYMPUS /"},
    {L"EASTMAN KODAK COMPANY / KODAK EASYSHARE", L"KODAK EASYSHARE /"},
    {L"EASTMAN KODAK COMPANY / KODAK", L"KODAK /"},
    {L"NIKON CORPORATION / NIKON", L"NIKON /"},
    {L"PENTAX              / PENTAX", L"PENTAX /"},
    {L"PENTAX Corporation  / PENTAX", L"PENTAX /"},
    {L"PENTAX Corporation / PENTAX", L"PENTAX /"},
    {L"PENTAX / PENTAX", L"PENTAX /"},
    {L"RICOH       /", L"RICOH /"},
    {L"SAMSUNG         /", L"Samsung /"},
    {L"Samsung Techwin /", L"Samsung /"},
    {L"SAMSUNG TECHWIN /", L"Samsung /"},
    {L"SAMSUNG / SAMSUNG", L"Samsung /"},
    {L"SANYO Electric Co.,Ltd. /", L"Sanyo /"},
}};

void ReplaceAll(std::wstring& text, const Spelling& spelling) {
  // From the start of the text each time: a replacement may complete another occurrence before it.
  for (std::size_t at = text.find(spelling.pattern); at != std::wstring::npos;
       at = text.find(spelling.pattern)) {
    text.replace(at, spelling.pattern.size(), spelling.replacement);
  }
}

}  // namespace

std::wstring NormalizeCameraKey(std::wstring_view key) {
  std::wstring text = base::CutText(key, base::kShortTextCapacity);
  for (const Spelling& spelling : kSpellings) ReplaceAll(text, spelling);
  return text;
}

std::wstring CameraKey(std::wstring_view make, std::wstring_view model) {
  std::wstring key(make);
  key += L" / ";
  key += model;
  return NormalizeCameraKey(key);
}

}  // namespace mirellon::profiles
