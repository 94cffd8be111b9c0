#include "ui/parameter_panel.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

#include "support/test_pictures.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

// The panel alone, in a window's harness for its surroundings.
class ParameterPanelTest : public ::testing::Test {
 protected:
  ParameterPanelTest() : panel(harness.window->panel()) {
    // What the window makes of the panel's signals is not tested here.
    QObject::disconnect(&panel, nullptr, harness.window.get(), nullptr);
    Photograph photograph;
    photograph.exif.make = L"Maker";
    photograph.exif.model = L"One";
    photograph.exif.iso = L"800";
    photograph.noise = {4.0, 3.0, false};
    panel.ShowPhotograph(photograph);
    panel.SetUsable(true);
  }

  QSlider& Slider(const char* field) { return *panel.findChild<QSlider*>(QString("slider.%1").arg(field)); }
  QLineEdit& Value(const char* field) { return *panel.findChild<QLineEdit*>(QString("value.%1").arg(field)); }
  QAbstractButton& Button(const char* name) { return *panel.findChild<QAbstractButton*>(name); }
  QComboBox& List(const char* name) { return *panel.findChild<QComboBox*>(name); }

  test::WindowHarness harness;
  ParameterPanel& panel;
};

TEST_F(ParameterPanelTest, SlidersStepTypeAndReset) {
  QSignalSpy wishes(&panel, &ParameterPanel::previewWished);
  Slider("m_dSharp1").setFocus();
  QTest::keyClick(&Slider("m_dSharp1"), Qt::Key_Right);
  EXPECT_EQ(Value("m_dSharp1").text(), "1.2");
  EXPECT_DOUBLE_EQ(panel.parameters().m_dSharp1, 1.2);
  QTest::keyClick(&Slider("m_dSharp1"), Qt::Key_PageDown);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dSharp1, 1.0) << "a page is a step";
  EXPECT_EQ(wishes.count(), 2);

  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "22,5");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 22.5);
  EXPECT_EQ(Slider("m_dStrength").value(), 450);
  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "x");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_EQ(Value("m_dStrength").text(), "22.5") << "no number";
  QTest::mouseDClick(panel.findChild<QLabel*>("caption.m_dStrength"), Qt::LeftButton);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 10.0);

  ASSERT_TRUE(panel.canUndo());
  panel.Undo();
  EXPECT_EQ(Value("m_dStrength").text(), "22.5");
  panel.Redo();
  EXPECT_EQ(Slider("m_dStrength").value(), 200);
}

TEST_F(ParameterPanelTest, AStoredValueBelowTheSliderStaysUntilItIsTouched) {
  harness.dialogs.profileNames = {{L"Maker / One", L"800"}};
  profiles::NoiseProfileStore store(profiles::StandardProfilePaths(harness.context.applicationData, {}));
  ASSERT_FALSE(store.Load());
  engine::DenoiseParameters low;
  low.m_dStrength = 0.5;
  low.m_iUseMedian = 2;
  ASSERT_FALSE(store.AddOrReplace(L"Maker / One", L"800", low));
  ASSERT_FALSE(store.Save());
  Photograph photograph;
  photograph.exif.make = L"Maker";
  photograph.exif.model = L"One";
  photograph.exif.iso = L"800";
  panel.ShowPhotograph(photograph);
  EXPECT_EQ(List("cameraList").currentText(), "Maker / One");
  EXPECT_EQ(Value("m_dStrength").text(), "0.5");
  EXPECT_EQ(Slider("m_dStrength").value(), 20);
  EXPECT_TRUE(Button("artefacts2").isChecked());
  QTest::keyClick(&Slider("m_dStrength"), Qt::Key_Left);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 1.0);
}

TEST_F(ParameterPanelTest, SetDefaultLeavesArtefactsAlone) {
  Button("artefacts1").click();
  const char* const fields[] = {"m_dStrength", "m_dStrengthChroma", "m_dStrengthChromaLarge",
                                "m_dDynamics", "m_dSharp1",         "m_dSharp2",
                                "m_dSharp3"};
  for (const char* field : fields) Slider(field).triggerAction(QAbstractSlider::SliderToMaximum);
  Button("setDefault").click();
  const engine::DenoiseParameters& set = panel.parameters();
  EXPECT_EQ(set.m_iUseMedian, 1);
  EXPECT_DOUBLE_EQ(set.m_dStrengthChromaLarge, 10.0);
  const int positions[] = {200, 200, 200, 100, 5, 5, 5};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(Slider(fields[i]).value(), positions[i]);
  EXPECT_EQ(Value("m_dDynamics").text(), "0.00");
}

TEST_F(ParameterPanelTest, KeepsAndDeletesSettings) {
  EXPECT_EQ(List("cameraList").currentText(), "<<Unknown Camera>>");
  EXPECT_FALSE(Button("deleteSetting").isEnabled());
  Button("saveSetting").click();
  EXPECT_EQ(List("cameraList").count(), 1) << "cancelled";
  Slider("m_dStrength").triggerAction(QAbstractSlider::SliderToMaximum);
  harness.dialogs.profileNames = {{L"Maker / One", L"800"}, {L"Maker / One", L"1600"}, {L"Bad]", L"1"}};
  Button("saveSetting").click();
  EXPECT_EQ(List("cameraList").currentText(), "Maker / One");
  EXPECT_EQ(List("isoList").currentText(), "800");
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 50.0);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dImmerkaerY, 4.0);
  Button("saveSetting").click();
  EXPECT_EQ(List("isoList").count(), 2);
  Button("saveSetting").click();
  EXPECT_EQ(harness.dialogs.messages.size(), 1U) << "a name that no file can hold";

  harness.dialogs.choices = {1};
  Button("deleteSetting").click();
  EXPECT_NE(harness.dialogs.questions.front().find(L"\n\nYes - delete all"), std::wstring::npos);
  EXPECT_EQ(List("isoList").currentText(), "1600") << "800 is gone";
  harness.dialogs.choices = {0};
  Button("deleteSetting").click();
  EXPECT_EQ(List("cameraList").currentText(), "<<Unknown Camera>>");
  EXPECT_EQ(List("cameraList").count(), 1);
}

TEST_F(ParameterPanelTest, TheCatchAllCannotBeDeletedAsAWhole) {
  harness.dialogs.profileNames = {{L"<<Unknown Camera>>", L"800"}};
  Button("saveSetting").click();
  ASSERT_TRUE(Button("deleteSetting").isEnabled());
  harness.dialogs.choices = {0};
  Button("deleteSetting").click();
  ASSERT_EQ(harness.dialogs.messages.size(), 1U);
  EXPECT_EQ(harness.dialogs.messages.front(), L"Cannot delete selected setting");
  EXPECT_EQ(List("isoList").count(), 2);
}

TEST_F(ParameterPanelTest, ManualTuningIsRemembered) {
  EXPECT_TRUE(Slider("m_dStrength").isVisible());
  Button("manualTuning").click();
  EXPECT_FALSE(Slider("m_dStrength").isVisible());
  EXPECT_FALSE(Button("setDefault").isVisible());
  EXPECT_TRUE(Button("denoise1021").isVisible());
  EXPECT_EQ(harness.settings.GetNumber(settings::Setting::kShowManualTunning), 0);
  List("qualityList").setCurrentIndex(0);
  emit List("qualityList").activated(0);
  EXPECT_EQ(harness.settings.GetNumber(settings::Setting::kQuality), 1);
}

TEST_F(ParameterPanelTest, EverythingButAbortRestsWhileRunning) {
  panel.SetRunning(true, false);
  for (const char* name : {"saveSetting", "deleteSetting", "manualTuning", "setDefault", "artefacts0"}) {
    EXPECT_FALSE(Button(name).isEnabled()) << name;
  }
  EXPECT_FALSE(List("cameraList").isEnabled());
  EXPECT_FALSE(Slider("m_dSharp3").isEnabled());
  EXPECT_TRUE(panel.findChild<QProgressBar*>("progress1037")->isVisible());
  QSignalSpy aborts(&panel, &ParameterPanel::abortRequested);
  Button("denoise1021").click();
  EXPECT_EQ(aborts.count(), 1);
}

}  // namespace
}  // namespace mirellon::ui
