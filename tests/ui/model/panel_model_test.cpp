#include "ui/model/panel_model.h"

#include <sstream>

#include <gtest/gtest.h>

#include "base/text.h"
#include "profiles/profile_lock.h"
#include "support/temporary_folder.h"

namespace mirellon::ui {
namespace {

Photograph PhotoOf(const wchar_t* model, const wchar_t* iso) {
  Photograph photograph;
  photograph.exif.make = L"Maker";
  photograph.exif.model = model;
  photograph.exif.iso = iso;
  return photograph;
}

class PanelModelTest : public ::testing::Test {
 protected:
  profiles::ProfilePaths Paths() const { return {folder / "settings" / profiles::kProfileFileName, {}}; }

  // "camera: iso iso", a line each, as the file says.
  std::string Stored() const {
    profiles::NoiseProfileStore store(Paths());
    EXPECT_FALSE(store.Load());
    std::ostringstream text;
    for (const profiles::CameraProfile& camera : store.cameras()) {
      text << base::Utf8FromWide(camera.name) << ':';
      for (const std::uint32_t iso : camera.isoValues) text << ' ' << iso;
      text << '\n';
    }
    return text.str();
  }

  test::TemporaryFolder folder;
};

TEST_F(PanelModelTest, WhatTwoWindowsChangeIsKeptTogether) {
  PanelModel one(Paths());
  PanelModel two(Paths());
  ASSERT_FALSE(one.Load());
  ASSERT_FALSE(one.Keep(L"Maker / Old", L"100"));
  ASSERT_FALSE(one.Keep(L"Maker / Old", L"200"));
  ASSERT_FALSE(one.Keep(L"Maker / Older", L"100"));
  ASSERT_FALSE(one.Save());
  ASSERT_FALSE(two.Load());

  // Neither knows of the other from here on.
  ASSERT_FALSE(one.Keep(L"Maker / One", L"400"));
  one.SelectCamera(one.store().FindCamera(L"Maker / Older"));
  ASSERT_FALSE(one.Delete(PanelModel::Scope::kCamera));
  ASSERT_FALSE(two.Keep(L"Maker / Old", L"800"));
  ASSERT_FALSE(two.Keep(L"Maker / Two", L"400"));
  two.SelectCamera(two.store().FindCamera(L"Maker / Old"));
  two.SelectIso(0);
  ASSERT_FALSE(two.Delete(PanelModel::Scope::kIso));
  ASSERT_FALSE(one.Save());
  two.SelectCamera(two.store().FindCamera(L"Maker / Two"));
  two.SetValue(&engine::DenoiseParameters::m_dStrength, 33.0);
  ASSERT_FALSE(two.Save());

  EXPECT_EQ(Stored(), "<<Unknown Camera>>: 100\nMaker / Old: 200 800\nMaker / One: 400\nMaker / Two: 400\n");
  EXPECT_EQ(two.CameraNames()[two.camera()], L"Maker / Two") << "chosen as before, under another number";
  EXPECT_DOUBLE_EQ(two.parameters().m_dStrength, 33.0);
  EXPECT_NE(two.store().FindCamera(L"Maker / One"), 0U) << "and the other's camera can be chosen";

  // Nothing is made twice: what the other has deleted since stays deleted.
  profiles::NoiseProfileStore other(Paths());
  ASSERT_FALSE(other.Load() || other.DeleteCamera(other.FindCamera(L"Maker / Two")) || other.Save());
  ASSERT_FALSE(two.Save());
  EXPECT_EQ(Stored(), "<<Unknown Camera>>: 100\nMaker / Old: 200 800\nMaker / One: 400\n");
  EXPECT_EQ(two.camera(), 0U) << "its camera is gone";
  EXPECT_DOUBLE_EQ(two.parameters().m_dStrength, 33.0) << "the values in work are not";
  EXPECT_EQ(test::FilesIn(folder / "settings"), 1U) << "the lock is held while it writes only";
}

TEST_F(PanelModelTest, WhatCannotBeSavedIsTriedAgain) {
  PanelModel model(Paths());
  ASSERT_FALSE(model.Load());
  ASSERT_FALSE(model.Keep(L"Maker / New", L"100"));
  {
    profiles::ProfileLock lock;
    ASSERT_FALSE(lock.Acquire(Paths().userFile, std::chrono::milliseconds(0)));
    EXPECT_TRUE(model.Save());
    EXPECT_NE(model.saveCause().find("another program"), std::string::npos) << model.saveCause();
    EXPECT_EQ(model.saveCauseFile(), Paths().userFile);
  }
  EXPECT_EQ(Stored(), "<<Unknown Camera>>: 100\n");
  model.ShowPhotograph(PhotoOf(L"New", L"100"));
  EXPECT_EQ(Stored(), "<<Unknown Camera>>: 100\nMaker / New: 100\n");
  EXPECT_EQ(model.CameraNames()[model.camera()], L"Maker / New");
}

TEST_F(PanelModelTest, MakesASetFromThePhotographsNoise) {
  // The shipped sets are interpolated between, whatever the user has made of his own.
  const profiles::ProfilePaths paths{folder / "settings" / profiles::kProfileFileName,
                                     folder / "shipped" / profiles::kProfileFileName};
  profiles::NoiseProfileStore shipped({paths.defaultFile, {}});
  ASSERT_FALSE(shipped.Load());
  engine::DenoiseParameters set;
  for (const int level : {2, 4}) {
    set.m_dImmerkaerY = set.m_dImmerkaerUV = level;
    set.m_dStrength = set.m_dStrengthChroma = 10.0 * level;
    ASSERT_FALSE(shipped.AddOrReplace(L"<<Unknown Camera>>", std::to_wstring(100 * level), set));
  }
  ASSERT_FALSE(shipped.DeleteIso(0, 0));
  ASSERT_FALSE(shipped.Save());

  PanelModel model(paths);
  ASSERT_FALSE(model.Load());
  Photograph photograph = PhotoOf(L"X 1", L"800");
  photograph.noise.luminance = 3.0;
  photograph.noise.chrominance = 3.5;
  model.ShowPhotograph(photograph);
  ASSERT_TRUE(model.CanMeasure());
  ASSERT_FALSE(model.KeepMeasured());
  EXPECT_EQ(model.CameraNames()[model.camera()], L"Maker / X 1");
  EXPECT_EQ(model.IsoTexts()[model.iso()], L"800");
  EXPECT_NEAR(model.parameters().m_dStrength, 30.0, 0.01);
  EXPECT_NEAR(model.parameters().m_dStrengthChroma, 35.0, 0.01);
  EXPECT_DOUBLE_EQ(model.parameters().m_dImmerkaerY, 3.0);
  // Again, of a camera that is stored with other blanks: no second one.
  photograph.exif.model = L"X1";
  photograph.exif.iso = L"1600";
  model.ShowPhotograph(photograph);
  ASSERT_FALSE(model.KeepMeasured());
  EXPECT_EQ(model.IsoTexts().size(), 2U);

  for (const wchar_t* iso : {L"", L"0", L"12", L"9999999"}) {
    model.ShowPhotograph(PhotoOf(L"X 1", iso));
    EXPECT_FALSE(model.CanMeasure());
    EXPECT_TRUE(model.KeepMeasured());
  }
}

}  // namespace
}  // namespace mirellon::ui
