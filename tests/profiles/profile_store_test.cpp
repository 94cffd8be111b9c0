#include "profiles/profile_store.h"

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirellon::profiles {

using engine::DenoiseParameters;
using test::ReadBytes;
using test::WriteBytes;

constexpr const char* kMark = "\xEF\xBB\xBF";

// The ten lines of a set, line ends as given.
std::string SetText(const std::string& end = "\r\n", const std::string& strength = "10.00") {
  return "m_dStrength = " + strength + end + "m_dStrengthChroma = 10.00" + end +
         "m_dStrengthChromaLarge = 0.00" + end + "m_dDynamics = 0.00" + end + "m_dSharp1 = 1.00" + end +
         "m_dSharp2 = 1.00" + end + "m_dSharp3 = 1.00" + end + "m_dImmerkaerY = 10.00" + end +
         "m_dImmerkaerUV = 10.00" + end + "m_iUseMedian = 0" + end;
}

// The file of a first run.
std::string FirstText(const std::string& end = "\r\n", const std::string& strength = "10.00") {
  return kMark + ("[General]" + end) + "No Of Cameras = 1" + end + "Actual Camera = 0" + end +
         "Actual ISO = 0" + end + "version = 2" + end + end + "[Camera_0]" + end +
         "m_wcsCameraName = <<Unknown Camera>>" + end + "m_uiISOCount = 1" + end + "ISO0 = 100" + end + end +
         "[Camera <<Unknown Camera>> ISO100]" + end + SetText(end, strength);
}

class ProfileStoreTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path File() const { return folder_ / "settings" / kProfileFileName; }
  [[nodiscard]] std::filesystem::path Shipped() const { return folder_ / kProfileFileName; }
  [[nodiscard]] NoiseProfileStore NewStore() const { return NoiseProfileStore({File(), Shipped()}); }

  // A store loaded from these bytes as the user's file.
  [[nodiscard]] NoiseProfileStore LoadedFrom(const std::string& bytes) const {
    std::filesystem::create_directory(folder_ / "settings");
    WriteBytes(File(), bytes);
    NoiseProfileStore store = NewStore();
    EXPECT_FALSE(store.Load());
    return store;
  }

  test::TemporaryFolder folder_;
};

// "name: 100 200; name: 400"
std::wstring Content(const NoiseProfileStore& store) {
  std::wstring text;
  for (const CameraProfile& camera : store.cameras()) {
    if (!text.empty()) text += L"; ";
    text += camera.name + L":";
    for (const std::uint32_t iso : camera.isoValues) text += L" " + std::to_wstring(iso);
    EXPECT_EQ(camera.isoValues.size(), camera.parameters.size());
  }
  return text;
}

DenoiseParameters WithStrength(double strength) {
  DenoiseParameters parameters;
  parameters.m_dStrength = strength;
  return parameters;
}

TEST_F(ProfileStoreTest, TheFirstRunWritesTheBuiltInSet) {
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  EXPECT_EQ(store.source(), ProfileSource::kBuiltIn);
  EXPECT_EQ(ReadBytes(File()), FirstText());
  EXPECT_EQ(test::FilesIn(folder_ / "settings"), 1U);
}

TEST_F(ProfileStoreTest, TheDefaultFileIsReadOnlyUntilTheUserHasOne) {
  std::string shipped = FirstText();
  shipped.replace(shipped.find("version = 2"), 11, "version = 3");
  shipped.replace(shipped.find("= 10.00"), 7, "= 44.00");
  WriteBytes(Shipped(), shipped);
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  EXPECT_EQ(store.source(), ProfileSource::kDefaultFile);
  EXPECT_FALSE(std::filesystem::exists(File()));
  ASSERT_FALSE(store.AddOrReplace(L"X", L"200", {}) || store.Save());
  EXPECT_EQ(ReadBytes(Shipped()), shipped);
  WriteBytes(File(), FirstText());
  ASSERT_FALSE(store.Load());
  EXPECT_EQ(store.source(), ProfileSource::kUserFile);
  EXPECT_EQ(store.Entry(0, 0)->m_dStrength, 10.0);
}

TEST_F(ProfileStoreTest, ValuesAreReadWithTheirDefaultsAndBounds) {
  const NoiseProfileStore store = LoadedFrom(
      "[GENERAL]\nno of cameras=2\nActual Camera=7\nActual ISO=-1\n[Camera_0]\nm_uiISOCount=4\n"
      "ISO0=-5\nISO1=2000000\nISO2=3000000000\nISO3 = 100x\n"
      "[Camera <<Unknown Camera>> "
      "ISO100]\nm_dStrength=60\nm_dStrengthChroma=-1\nm_dStrengthChromaLarge=1e999\n"
      "m_dDynamics=-2.5\nm_dSharp1= \nm_dSharp2=0x2\nm_dSharp3=2,5\nm_dImmerkaerY=nan\nm_dImmerkaerUV=.5e1z\n"
      "m_iUseMedian=9\n[Camera_1]\nm_wcsCameraName=" +
      std::string(200, 'n') + "\nm_uiISOCount=20000\n");
  EXPECT_EQ(store.actualCamera(), 7U);
  EXPECT_EQ(store.actualIso(), 4294967295U);
  ASSERT_EQ(store.cameraCount(), 2U);
  EXPECT_EQ(store.cameras()[0].isoValues, (std::vector<std::uint32_t>{0, 1000000, 1000000, 100}));
  const double expected[] = {50.0, 0.0, 50.0, -2.0, 0.0, 0.0, 2.0, 0.0, 5.0};
  const double defaults[] = {10.0, 10.0, 0.0, 0.0, 1.0, 1.0, 1.0, 5.0, 5.0};
  for (std::size_t i = 0; i < kStoredValues.size(); ++i) {
    EXPECT_EQ(store.Entry(0, 3)->*kStoredValues[i].member, expected[i]) << i;
    EXPECT_EQ(store.Entry(0, 0)->*kStoredValues[i].member, defaults[i]) << i;
  }
  EXPECT_EQ(store.Entry(0, 3)->m_iUseMedian, 2);
  EXPECT_EQ(store.Entry(0, 3)->iso, 100U);
  EXPECT_EQ(store.cameras()[1].name, std::wstring(127, L'n'));
  EXPECT_EQ(store.cameras()[1].isoValues.size(), 10000U);
}

TEST_F(ProfileStoreTest, WhatIsWrittenComesBackToTheByte) {
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  DenoiseParameters odd;
  odd.m_dDynamics = -1.994;
  odd.m_dImmerkaerY = 9999.99;
  odd.m_iUseMedian = 2;
  for (const wchar_t* name : {L"Caméra \x1F600 / x", L" padded ", L"a=b;c \"q\"", L""}) {
    ASSERT_FALSE(store.AddOrReplace(name, L"200", odd) || store.AddOrReplace(name, L"100", {}));
  }
  EXPECT_TRUE(store.DeleteIso(0, 0));
  ASSERT_FALSE(store.Save());
  const std::string text = ReadBytes(File());
  NoiseProfileStore again = NewStore();
  ASSERT_FALSE(again.Load());
  EXPECT_EQ(again.cause(), "");
  EXPECT_EQ(Content(again), Content(store));
  EXPECT_EQ(again.Entry(1, 1)->m_dDynamics, -1.99);
  ASSERT_FALSE(again.Save());
  EXPECT_EQ(ReadBytes(File()), text);
  EXPECT_EQ(test::FilesIn(folder_ / "settings"), 1U);
}

TEST_F(ProfileStoreTest, CamerasAndSpeedsKeepTheirOrder) {
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  const std::pair<const wchar_t*, const wchar_t*> additions[] = {
      {L"b", L"400"}, {L"B", L"6"}, {L"a", L"500000"}, {L"<", L"17 of it"}, {L"b", L"200"}, {L"b", L"800"}};
  for (const auto& [camera, iso] : additions) ASSERT_FALSE(store.AddOrReplace(camera, iso, {}));
  EXPECT_EQ(Content(store), L"<<Unknown Camera>>: 100; <: 17; B: 16; a: 409600; b: 200 400 800");
  ASSERT_FALSE(store.AddOrReplace(L"b", L"400", WithStrength(33.0)));
  ASSERT_FALSE(store.AddOrReplace(kUnknownCamera, L"50", WithStrength(34.0)));
  EXPECT_EQ(Content(store), L"<<Unknown Camera>>: 50 100; <: 17; B: 16; a: 409600; b: 200 400 800");
  EXPECT_EQ(store.Entry(4, 1)->m_dStrength, 33.0);
  EXPECT_EQ(store.Entry(4, 1)->iso, 400U);
  EXPECT_EQ(store.Entry(0, 0)->m_dStrength, 34.0);
  for (const wchar_t* name : {L"a]b", L"a\nb", L"<<<X"}) EXPECT_TRUE(store.AddOrReplace(name, L"100", {}));
}

TEST_F(ProfileStoreTest, DeletionsRefuseTheCatchAllAndTouchTheActualSpeed) {
  NoiseProfileStore store = LoadedFrom(
      "[General]\nNo Of Cameras=3\nActual ISO=1\n[Camera_0]\nm_uiISOCount=1\n[Camera_1]\nm_wcsCameraName=a\n"
      "m_uiISOCount=3\nISO0=100\nISO1=200\nISO2=400\n[Camera_2]\nm_wcsCameraName=b\nm_uiISOCount=3\nISO0="
      "100\n"
      "ISO1=200\nISO2=400\n");
  for (const std::uint32_t camera : {0U, 1U, 2U, 3U}) EXPECT_TRUE(store.DeleteIso(camera, 3));
  EXPECT_TRUE(store.DeleteIso(0, 0) || store.DeleteCamera(3) || !store.DeleteCamera(0));
  EXPECT_EQ(store.actualIso(), 1U);
  ASSERT_FALSE(store.DeleteIso(2, 0));  // 1 is below camera 2
  EXPECT_EQ(store.actualIso(), 1U);
  ASSERT_FALSE(store.DeleteIso(1, 1));
  EXPECT_EQ(store.actualIso(), 0U);
  ASSERT_FALSE(store.DeleteIso(1, 1) || store.DeleteIso(1, 0));
  EXPECT_EQ(Content(store), L"<<Unknown Camera>>: 0; b: 200 400");
  EXPECT_EQ(store.cameras()[1].index, 1U);
  ASSERT_FALSE(store.AddOrReplace(kUnknownCamera, L"100", {}) || store.DeleteIso(0, 0));
  EXPECT_EQ(store.actualIso(), 4294967295U);
}

TEST_F(ProfileStoreTest, LookUpsIgnoreSpacesAndTakeTheFirstOfEquals) {
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  ASSERT_FALSE(store.AddOrReplace(L"Canon / EOS 5D", L"100", {}));
  EXPECT_EQ(store.FindCamera(L" Canon/EOS5D "), 1U);
  for (const wchar_t* key : {L"canon / EOS 5D", L"Canon / EOS\t5D", L"", kUnknownCamera}) {
    EXPECT_EQ(store.FindCamera(key), 0U);
  }
  const double noises[][2] = {{1.0, 9.0}, {4.0, 5.0}, {4.0, 5.0}, {8.0, 1.0}};
  for (int i = 0; i < 4; ++i) {
    DenoiseParameters set;
    set.m_dImmerkaerY = noises[i][0];
    set.m_dImmerkaerUV = noises[i][1];
    ASSERT_FALSE(store.AddOrReplace(L"noisy", std::to_wstring(100 << i), set));
  }
  const std::pair<const wchar_t*, std::uint32_t> speeds[] = {
      {L"400", 2}, {L" 800 x", 3}, {L"401", 0}, {L"", 0}, {L"-100", 0}};
  for (const auto& [iso, entry] : speeds) EXPECT_EQ(store.FindIso(2, iso), entry) << iso;
  const struct {
    double luminance;
    double chrominance;
    std::uint32_t entry;
  } nearest[] = {{4.1, 5.0, 1}, {8.0, 8.0, 1}, {8.0, 0.0, 3}, {2.0, 1e-6, 0}, {0.0, 20.0, 0}, {6.0, 3.0, 1}};
  for (const auto& c : nearest) {
    EXPECT_EQ(store.FindNearestNoise(L"noisy", c.luminance, c.chrominance), c.entry) << c.luminance;
  }
}

TEST_F(ProfileStoreTest, NothingUnderstoodOtherwiseIsOverwrittenWithoutACopy) {
  const std::string good = FirstText();
  const auto without = [&good](const std::string& part) {
    std::string text = good;
    return text.erase(text.find(part), part.size());
  };
  const auto with = [&good](const std::string& part, const std::string& other) {
    std::string text = good;
    return text.replace(text.find(part), part.size(), other);
  };
  std::string wide = "\xFF\xFE";
  for (const char byte : good) wide.append({byte, '\0'});
  const struct {
    std::string bytes;
    const wchar_t* content;  // what is read of it
    const char* cause;
  } cases[] = {
      {kMark, L"<<Unknown Camera>>:", "it has no section 'General'"},
      {std::string(1000, '\0'), L"<<Unknown Camera>>:", "it has no section 'General'"},
      {"\x89PNG\r\n\x1A\n\rIHDR\xFF", L"<<Unknown Camera>>:", "it has no section 'General'"},
      {"[General", L"<<Unknown Camera>>:", "it has no section 'General'"},
      {"<html>[x]</html>", L"<<Unknown Camera>>:", "it has no section 'General'"},
      {wide, L"<<Unknown Camera>>:", "not a text of sections and keys"},
      {std::string((16U << 20U) + 1, ';'), L"<<Unknown Camera>>:", "File too large"},
      {good.substr(0, good.find("m_dSharp")), L"<<Unknown Camera>>: 100", ""},
      {good.substr(0, good.find("[Camera <<")), L"<<Unknown Camera>>: 100", "parts are missing"},
      {good.substr(0, good.find("[Camera_0")), L"<<Unknown Camera>>:", "parts are missing"},
      {without("ISO0 = 100\r\n"), L"<<Unknown Camera>>: 0", "parts are missing"},
      {without("[General]\r\n"), L"<<Unknown Camera>>: 100", "it has no section 'General'"},
      {with("Cameras = 1", "Cameras = 4000000000"), L"<<Unknown Camera>>: 100", "parts are missing"},
      {with("Cameras = 1", "Cameras = -1"), L"<<Unknown Camera>>: 100", "parts are missing"},
      {with("Cameras = 1", "Cameras = 3"),
       L"<<Unknown Camera>>: 100; <<Unknown Camera>>:; <<Unknown Camera>>:", "parts are missing"},
      {with("Cameras = 1", "Cameras = 0"), L"", ""},
      {with("ISOCount = 1", "ISOCount = -1"), L"<<Unknown Camera>>:", "parts are missing"},
      {with("<<Unknown Camera>>\r", "Z\xE9\r"), L"Z\x00E9: 100", "parts are missing"},
      {with("<<Unknown Camera>>\r", "<<<T\r\n<<<<X\r\nY\r\nT\r"), L"<<X Y: 100", "parts are missing"},
      {with("[Camera <<", "; a comment\r\n[Camera <<"), L"<<Unknown Camera>>: 100", ""},
      {with("= 10.00", "= 10"), L"<<Unknown Camera>>: 100", ""},
      {good + "\r\n[Mine]\r\nkey = value\r\n", L"<<Unknown Camera>>: 100", ""},
      {FirstText("\n"), L"<<Unknown Camera>>: 100", ""},
  };
  std::size_t files = 1;
  for (const auto& c : cases) {
    NoiseProfileStore store = LoadedFrom(c.bytes);
    EXPECT_EQ(Content(store), c.content) << c.bytes.substr(0, 400);
    EXPECT_NE(store.cause().find(c.cause), std::string::npos) << store.cause() << " for " << c.cause;
    EXPECT_EQ(store.cause().empty(), *c.cause == '\0');
    EXPECT_EQ(store.understood(), *c.cause == '\0' || *c.cause == 'p') << c.cause;
    ASSERT_FALSE(store.Save()) << store.cause();
    EXPECT_EQ(ReadBytes(store.keptCopy()), c.bytes);
    EXPECT_EQ(test::FilesIn(folder_ / "settings"), ++files);
    // What it wrote itself needs no copy.
    ASSERT_FALSE(store.Save());
    EXPECT_TRUE(store.keptCopy().empty());
  }
}

TEST_F(ProfileStoreTest, AnEmptyFileNeedsNoCopy) {
  NoiseProfileStore store = LoadedFrom("");
  EXPECT_EQ(Content(store), L"<<Unknown Camera>>:");
  EXPECT_NE(store.cause(), "");
  EXPECT_TRUE(store.understood());
  ASSERT_FALSE(store.Save());
  EXPECT_EQ(test::FilesIn(folder_ / "settings"), 1U);
}

TEST_F(ProfileStoreTest, AbsurdCountsEndSoonWithBoundedMemory) {
  std::string text = "[General]\nNo Of Cameras=1000\n";
  for (int i = 0; i < 1000; ++i) text += "[Camera_" + std::to_string(i) + "]\nm_uiISOCount=999999999\n";
  const NoiseProfileStore store = LoadedFrom(text);
  std::size_t entries = 0;
  for (const CameraProfile& camera : store.cameras()) entries += camera.isoValues.size();
  EXPECT_EQ(store.cameraCount(), 1000U);
  EXPECT_EQ(entries, 20000U);

  text = "[General]\nNo Of Cameras=4000000000\n[Camera_2000]\nm_wcsCameraName=last\n";
  for (int i = 0; i < 90000; ++i) text += "[Camera_" + std::to_string(i) + "]\n";
  const NoiseProfileStore unnamed = LoadedFrom(text);
  EXPECT_EQ(unnamed.cameraCount(), 2001U);
  EXPECT_EQ(unnamed.cameras().back().name, L"last");
}

TEST_F(ProfileStoreTest, ManyHonestSetsAreAllRead) {
  std::string text = "[General]\nNo Of Cameras=1100\n";
  for (int i = 0; i < 1100; ++i) {
    const std::string camera = std::to_string(i);
    std::string sets;
    text.append("[Camera_").append(camera).append("]\nm_wcsCameraName=").append(camera);
    text += "\nm_uiISOCount=20\n";
    for (int k = 0; k < 20; ++k) {
      const std::string iso = std::to_string(100 + k);
      text += "ISO" + std::to_string(k) + "=" + iso + "\n";
      sets.append("[Camera ").append(camera).append(" ISO").append(iso).append("]\n");
    }
    text += sets;
  }
  const NoiseProfileStore store = LoadedFrom(text);
  EXPECT_EQ(store.cause(), "");
  EXPECT_EQ(store.cameraCount(), 1100U);
  EXPECT_EQ(store.cameras().back().isoValues.size(), 20U);
}

TEST_F(ProfileStoreTest, NamesThatDifferInCaseOnlyKeepTheirOwnSets) {
  NoiseProfileStore store = NewStore();
  ASSERT_FALSE(store.Load());
  ASSERT_FALSE(store.AddOrReplace(L"ACME / One", L"100", WithStrength(5.0)));
  ASSERT_FALSE(store.AddOrReplace(L"acme / one", L"100", WithStrength(9.0)) || store.Save());
  NoiseProfileStore again = NewStore();
  ASSERT_FALSE(again.Load());
  EXPECT_EQ(again.cause(), "");
  EXPECT_EQ(Content(again), L"<<Unknown Camera>>: 100; ACME / One: 100; acme / one: 100");
  EXPECT_EQ(again.Entry(1, 0)->m_dStrength, 5.0);
  EXPECT_EQ(again.Entry(2, 0)->m_dStrength, 9.0);
  ASSERT_FALSE(again.Save());
  EXPECT_EQ(test::FilesIn(folder_ / "settings"), 1U) << "no second name for what this program wrote";

  // Without a section of its very own, one that differs in case does; keys likewise.
  const NoiseProfileStore typed = LoadedFrom(
      "[GENERAL]\nno of cameras=2\n[CAMERA_0]\nm_WCScameraname=<<Unknown "
      "Camera>>\nM_UIISOCOUNT=1\niso0=100\n[camera_1]\n"
      "m_wcscameraname=Acme\nm_uiISOCount=1\nISO0=200\n[camera <<unknown camera>> iso100]\nM_DSTRENGTH=7\n"
      "[Camera ACME ISO200]\nm_dstrength=8\n");
  EXPECT_EQ(typed.cause(), "");
  EXPECT_EQ(typed.Entry(0, 0)->m_dStrength, 7.0);
  EXPECT_EQ(typed.Entry(1, 0)->m_dStrength, 8.0);
}

TEST_F(ProfileStoreTest, AFileThatCannotBeWrittenLeavesTheStore) {
  WriteBytes(folder_ / "settings", "in the way");
  NoiseProfileStore store = NewStore();
  EXPECT_FALSE(store.Load());
  EXPECT_NE(store.cause(), "");
  EXPECT_TRUE(store.Save());
  EXPECT_EQ(Content(store), L"<<Unknown Camera>>: 100");
  EXPECT_EQ(ReadBytes(folder_ / "settings"), "in the way");

  const std::filesystem::path folder = folder_ / "a folder";
  std::filesystem::create_directory(folder);
  NoiseProfileStore other({folder, {}});
  EXPECT_FALSE(other.Load());
  EXPECT_EQ(Content(other), L"<<Unknown Camera>>:");
  EXPECT_TRUE(other.Save());
  EXPECT_NE(other.cause().find("Is a directory"), std::string::npos);
}

TEST_F(ProfileStoreTest, PermissionsAndLinksStay) {
  NoiseProfileStore store = LoadedFrom(FirstText());
  const auto mode = std::filesystem::perms(0640);
  std::filesystem::permissions(File(), mode);
  std::filesystem::create_directory(folder_ / "links");
  std::filesystem::create_symlink(File(), folder_ / "links" / "p.ini");
  NoiseProfileStore linked({folder_ / "links" / "p.ini", {}});
  ASSERT_FALSE(linked.Load() || linked.AddOrReplace(L"X", L"100", {}) || linked.Save());
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "links" / "p.ini"));
  EXPECT_EQ(std::filesystem::status(File()).permissions(), mode);
  ASSERT_FALSE(store.Load());
  EXPECT_EQ(store.cameraCount(), 2U);
}

TEST_F(ProfileStoreTest, SavingAtOnceNeverTearsTheFile) {
  std::filesystem::create_directory(folder_ / "settings");
  WriteBytes(File(), FirstText());
  {
    std::vector<std::jthread> writers;
    for (int i = 1; i <= 2; ++i) {
      writers.emplace_back([this, i] {
        NoiseProfileStore store = NewStore();
        for (int k = 0; k < 20; ++k) {
          EXPECT_FALSE(store.Load());
          EXPECT_EQ(store.cause(), "");
          EXPECT_FALSE(store.AddOrReplace(std::to_wstring(i), std::to_wstring(100 + k), {}));
          EXPECT_FALSE(store.Save()) << store.cause();
        }
      });
    }
  }
  EXPECT_EQ(test::FilesIn(folder_ / "settings"), 1U);
}

}  // namespace mirellon::profiles
