#include "profiles/camera_key.h"

#include <string>

#include <gtest/gtest.h>

namespace mirellon::profiles {

struct Case {
  std::wstring make;
  std::wstring model;
  std::wstring key;
};

TEST(CameraKeyTest, MakersSpellingsBecomeUniform) {
  const Case cases[] = {
      {L"CASIO COMPUTER CO.,LTD.", L"EX-Z3", L"CASIO / EX-Z3"},
      {L"Canon", L"Canon EOS 5D", L"Canon / EOS 5D"},
      {L"EASTMAN KODAK COMPANY", L"KODAK EASYSHARE C713", L"KODAK EASYSHARE / C713"},
      {L"EASTMAN KODAK COMPANY", L"KODAK DC240", L"KODAK / DC240"},
      {L"NIKON CORPORATION", L"NIKON D70", L"NIKON / D70"},
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
  const Case cases[] = {{L"OLYMPUS IMAGING CORP." + std::wstring(2, L' '), L"uD800", L"OLYMPUS / uD800"},
                        {L"PENTAX" + std::wstring(13, L' '), L"PENTAX K100D", L"PENTAX / K100D"},
                        {L"RICOH" + std::wstring(6, L' '), L"GR", L"RICOH / GR"},
                        {L"SAMSUNG" + std::wstring(8, L' '), L"Digimax", L"Samsung / Digimax"}};
  for (const Case& c : cases) {
    EXPECT_EQ(CameraKey(c.make, c.model), c.key);
    for (const std::wstring& make : {c.make.substr(0, c.make.size() - 1), c.make + L" "}) {
      EXPECT_EQ(CameraKey(make, c.model), make + L" / " + c.model);
    }
  }
}

TEST(CameraKeyTest, EveryOccurrenceIsReplacedAndLaterRowsSeeEarlierOnes) {
  EXPECT_EQ(NormalizeCameraKey(L"Canon / Canon Canon / Canon"), L"Canon / / Canon");
  EXPECT_EQ(NormalizeCameraKey(L"Canon / CanonCanon / Canon"), L"Canon /Canon /");
  EXPECT_EQ(CameraKey(L"SAMSUNG" + std::wstring(8, L' '), L"SAMSUNG GX"), L"Samsung / SAMSUNG GX");
}

TEST(CameraKeyTest, KeysAreCutBeforeTheyAreNormalised) {
  const std::wstring model(200, L'x');
  EXPECT_EQ(CameraKey(L"Canon", model), (L"Canon / " + model).substr(0, 127));
  // The cut falls inside the pattern, which therefore stays.
  const std::wstring lead(120, L'y');
  EXPECT_EQ(NormalizeCameraKey(lead + L"Canon / Canon"), (lead + L"Canon / Canon").substr(0, 127));
}

}  // namespace mirellon::profiles
