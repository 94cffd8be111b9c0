#include "ui/parameter_panel.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

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
  ASSERT_TRUE(test::WaitFor([&] { return wishes.count() == 1; })) << "once for a row of steps";
  EXPECT_FALSE(panel.canUndo()) << "which led nowhere";

  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "22,5");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 22.5);
  EXPECT_EQ(Slider("m_dStrength").value(), 450);
  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "x");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_EQ(Value("m_dStrength").text(), "22.5") << "no number";
  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "+22.5");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 22.5);
  QTest::mouseDClick(panel.findChild<QLabel*>("caption.m_dStrength"), Qt::LeftButton);
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 10.0);

  ASSERT_TRUE(panel.canUndo());
  panel.Undo();
  EXPECT_EQ(Value("m_dStrength").text(), "22.5");
  panel.Redo();
  EXPECT_EQ(Slider("m_dStrength").value(), 200);
}

TEST_F(ParameterPanelTest, AHeldKeyIsOneStepToTakeBack) {
  for (int i = 0; i < 30; ++i) QTest::keyClick(&Slider("m_dStrength"), Qt::Key_Right);
  EXPECT_EQ(Slider("m_dStrength").value(), 230);
  panel.Undo();
  EXPECT_EQ(Slider("m_dStrength").value(), 200) << "also before the pause that ends it";
  EXPECT_FALSE(panel.canUndo());
  panel.Redo();
  EXPECT_EQ(Slider("m_dStrength").value(), 230);
}

TEST_F(ParameterPanelTest, WhatWasTypedCountsOnceItIsCommitted) {
  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "33");
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 10.0);
  panel.Commit();
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 33.0);
  QSignalSpy wishes(&panel, &ParameterPanel::previewWished);
  panel.Commit();
  EXPECT_EQ(wishes.count(), 0) << "once";
}

TEST_F(ParameterPanelTest, TheWheelNeverChoosesFromAList) {
  harness.dialogs.profileNames = {{L"Maker / One", L"800"}};
  Button("saveSetting").click();
  for (const char* name : {"cameraList", "isoList", "qualityList"}) {
    QComboBox& list = List(name);
    const int chosen = list.currentIndex();
    for (const bool focused : {false, true}) {
      if (focused) list.setFocus();
      for (const int delta : {120, -120}) {
        QWheelEvent event({5, 5}, list.mapToGlobal(QPointF(5, 5)), {}, {0, delta}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&list, &event);
        EXPECT_EQ(list.currentIndex(), chosen) << name;
        EXPECT_FALSE(event.isAccepted()) << "it scrolls the panel";
      }
    }
  }
}

TEST_F(ParameterPanelTest, UndoBringsTheListsBack) {
  harness.dialogs.profileNames = {{L"Maker / One", L"800"}, {L"Maker / One", L"1600"}};
  Slider("m_dStrength").triggerAction(QAbstractSlider::SliderToMaximum);
  Button("saveSetting").click();
  Slider("m_dStrength").triggerAction(QAbstractSlider::SliderToMinimum);
  Button("saveSetting").click();
  ASSERT_EQ(List("isoList").currentText(), "800") << "the photograph's";
  emit List("isoList").activated(1);
  ASSERT_DOUBLE_EQ(panel.parameters().m_dStrength, 1.0);
  panel.Undo();
  EXPECT_EQ(List("isoList").currentText(), "800");
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 50.0);
  panel.Redo();
  EXPECT_EQ(List("isoList").currentText(), "1600");
  panel.Undo();
  emit List("cameraList").activated(0);
  panel.Undo();
  EXPECT_EQ(List("cameraList").currentText(), "Maker / One");
  EXPECT_EQ(List("isoList").currentText(), "800");
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
  Value("m_dStrength").selectAll();
  QTest::keyClicks(&Value("m_dStrength"), "x");
  QTest::keyClick(&Value("m_dStrength"), Qt::Key_Return);
  EXPECT_EQ(Value("m_dStrength").text(), "0.5");
  EXPECT_DOUBLE_EQ(panel.parameters().m_dStrength, 0.5) << "nor by what is no number";
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
  Value("m_dSharp3").setFocus();
  panel.SetRunning(true, false);
  EXPECT_TRUE(Button("denoise1021").hasFocus()) << "which aborts now";
  for (const char* name : {"saveSetting", "deleteSetting", "manualTuning", "setDefault", "artefacts0"}) {
    EXPECT_FALSE(Button(name).isEnabled()) << name;
  }
  for (const char* name : {"cameraList", "isoList", "qualityList"})
    EXPECT_FALSE(List(name).isEnabled()) << name;
  EXPECT_FALSE(Slider("m_dSharp3").isEnabled());
  for (const QLabel* label : panel.findChildren<QLabel*>())
    EXPECT_FALSE(label->isEnabled()) << label->text().toStdString();
  EXPECT_FALSE(panel.findChild<QWidget*>("imageInfoBox")->isEnabled());
  EXPECT_TRUE(Button("setDefault").toolTip().contains("wait"));
  auto* progress = panel.findChild<QProgressBar*>("progress1037");
  EXPECT_TRUE(progress->isVisible());
  QSignalSpy aborts(&panel, &ParameterPanel::abortRequested);
  Button("denoise1021").click();
  EXPECT_EQ(aborts.count(), 1);
  panel.SetRunning(false, true);
  EXPECT_FALSE(progress->isVisible());
  EXPECT_EQ(Button("denoise1021").text(), "Redefine");
  EXPECT_TRUE(Button("setDefault").toolTip().isEmpty());
  EXPECT_TRUE(Button("deleteSetting").toolTip().contains("stays")) << "the first setting of all";
  EXPECT_EQ(Button("saveSetting").toolTip(), "Save Manual Setting...");
}

// Where the pointer was used, the arrow and page keys stay the photograph's.
TEST_F(ParameterPanelTest, ThePointerTakesNoFocusFromTheView) {
  ImageView& view = harness.window->view();
  view.setFocus();
  for (const char* name : {"setDefault", "manualTuning", "saveSetting"}) {
    QTest::mouseClick(&Button(name), Qt::LeftButton);
    EXPECT_TRUE(view.hasFocus()) << name;
  }
  for (const char* name : {"cameraList", "isoList", "qualityList"}) {
    EXPECT_EQ(List(name).focusPolicy(), Qt::TabFocus) << name;
  }
}

}  // namespace
}  // namespace mirellon::ui
