#include "profiles/camera_key.h"

#include <string>

#include <gtest/gtest.h>

namespace mirellon::profiles {
namespace {

std::wstring Blanks(std::size_t count) {
  return std::wstring(count, L' ');
}

struct Case {
  std::wstring make;
  std::wstring model;
  std::wstring key;
};

TEST(CameraKeyTest, MakersSpellingsBecomeUniform) {
  const Case cases[] = {
      {L"CASIO COMPUTER CO.,LTD.", L"EX-Z3", L"CASIO / EX-Z3"},
      {L"CASIO COMPUTER CO.,LTD", L"EX-Z3", L"CASIO COMPUTER CO.,LTD / EX-Z3"},
      {L"Canon", L"Canon EOS 5D", L"Canon / EOS 5D"},
      {L"EASTMAN KODAK COMPANY", L"KODAK EASYSHARE C713", L"KODAK EASYSHARE / C713"},
      {L"EASTMAN KODAK COMPANY", L"KODAK DC240", L"KODAK / DC240"},
      {L"NIKON CORPORATION", L"NIKON D70", L"NIKON / D70"},
      {L"nikon corporation", L"NIKON D70", L"nikon corporation / NIKON D70"},
      {L"NIKON CORPORATION", L"COOLPIX", L"NIKON CORPORATION / COOLPIX"},
      {L"PENTAX", L"PENTAX K10D", L"PENTAX / K10D"},
      {L"PENTAX Corporation", L"PENTAX K10D", L"PENTAX / K10D"},
      {L"PENTAX Corporation ", L"PENTAX K10D", L"PENTAX / K10D"},
      {L"SAMSUNG", L"SAMSUNG GX10", L"Samsung / GX10"},
      {L"SAMSUNG TECHWIN", L"Pro 815", L"Samsung / Pro 815"},
      {L"Samsung Techwin", L"Pro 815", L"Samsung / Pro 815"},
      {L"SANYO Electric Co.,Ltd.", L"VPC", L"Sanyo / VPC"},
      {L"", L"", L" / "},
  };
  for (const Case& c : cases) EXPECT_EQ(CameraKey(c.make, c.model), c.key);
}

TEST(CameraKeyTest, PaddedMakersMatchOnlyWithTheirExactBlanks) {
  struct Padded {
    const wchar_t* make;
    std::size_t blanks;
    const wchar_t* model;
    const wchar_t* key;
  };
  const Padded cases[] = {
      {L"OLYMPUS IMAGING CORP.", 2, L"uD800", L"OLYMPUS / uD800"},
      {L"PENTAX", 13, L"PENTAX K100D", L"PENTAX / K100D"},
      {L"RICOH", 6, L"GR", L"RICOH / GR"},
      {L"SAMSUNG", 8, L"Digimax", L"Samsung / Digimax"},
  };
  for (const Padded& c : cases) {
    EXPECT_EQ(CameraKey(c.make + Blanks(c.blanks), c.model), c.key);
    const std::wstring fewer = c.make + Blanks(c.blanks - 1);
    EXPECT_EQ(CameraKey(fewer, c.model), fewer + L" / " + c.model);
    // A blank too many keeps the maker as well, as the pattern starts with the maker's name.
    const std::wstring more = c.make + Blanks(c.blanks + 1);
    EXPECT_EQ(CameraKey(more, c.model), more + L" / " + c.model);
  }
}

TEST(CameraKeyTest, EveryOccurrenceIsReplacedAndLaterRowsSeeEarlierOnes) {
  // The first replacement completes another occurrence with what followed it.
  EXPECT_EQ(NormalizeCameraKey(L"Canon / Canon Canon / Canon"), L"Canon / / Canon");
  // The padded row leaves "SAMSUNG" spelt as "Samsung", so the last Samsung row no longer applies.
  EXPECT_EQ(CameraKey(L"SAMSUNG" + Blanks(8), L"SAMSUNG GX"), L"Samsung / SAMSUNG GX");
  EXPECT_EQ(NormalizeCameraKey(L"Canon / CanonCanon / Canon"), L"Canon /Canon /");
}

TEST(CameraKeyTest, KeysAreCutBeforeTheyAreNormalised) {
  const std::wstring model(200, L'x');
  EXPECT_EQ(CameraKey(L"Canon", model), (L"Canon / " + model).substr(0, 127));
  // The cut falls inside the pattern, which therefore stays.
  const std::wstring lead(120, L'y');
  EXPECT_EQ(NormalizeCameraKey(lead + L"Canon / Canon"), (lead + L"Canon / Canon").substr(0, 127));
  EXPECT_EQ(NormalizeCameraKey(L"NIKON CORPORATION / NIKON " + model).size(), 127U - 18U);
}

}  // namespace
}  // namespace mirellon::profiles
