#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/dialogs/quality_slider.h"
#include "ui/dialogs/save_dialog.h"

namespace mirellon::ui {
namespace {

class DialogsTest : public ::testing::Test {
 protected:
  settings::Localization localization;
  Texts texts{localization};
  test::TemporaryFolder folder;
};

TEST_F(DialogsTest, QualityCountsStepsBeyondItsEnds) {
  QualitySlider slider(3, texts);
  EXPECT_EQ(slider.quality(), 10);
  auto* bar = slider.findChild<QSlider*>("control1082");
  QTest::keyClick(bar, Qt::Key_Left);
  EXPECT_EQ(slider.quality(), 9);
  EXPECT_EQ(bar->value(), 10);
  QTest::keyClick(bar, Qt::Key_Right);
  EXPECT_EQ(slider.quality(), 11);
  bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
  EXPECT_EQ(slider.quality(), 12);
  EXPECT_EQ(slider.findChild<QLabel*>("control1083")->text(), "12");
}

TEST_F(DialogsTest, SaveOffersWhatTheDepthAllows) {
  SaveQuestion question{L"Save As...", {folder / "IMG.v2-denoised", 4, ".jpg"}, 8, 70};
  SaveDialog dialog(question, texts, nullptr);
  auto* quality = dialog.findChild<QSlider*>("control1082");
  EXPECT_TRUE(quality->isEnabled());
  EXPECT_EQ(dialog.answer().path, folder / "IMG.v2-denoised.jpg");
  EXPECT_EQ(dialog.answer().jpegQuality, 70);
  dialog.selectNameFilter("*.png");
  emit dialog.filterSelected("*.png");
  EXPECT_FALSE(quality->isEnabled());
  EXPECT_EQ(dialog.answer().path, folder / "IMG.v2-denoised.png");
  question.bitsPerComponent = 16;
  question.proposal.filterIndex = 1;
  const SaveDialog deep(question, texts, nullptr);
  EXPECT_EQ(deep.nameFilters(), QStringList({"*.tif", "*.png"}));
  EXPECT_FALSE(deep.findChild<QSlider*>("control1082")->isEnabled());
}

TEST_F(DialogsTest, AddingTakesTheNameFromThePhotograph) {
  ProfileNameQuestion question;
  question.proposal = {L"<<Unknown Camera>>", L"100"};
  EXPECT_FALSE(AddingDialog(question, texts, nullptr).findChild<QPushButton*>("fromExif")->isEnabled());
  question.exif.make = L"NIKON CORPORATION";
  question.exif.model = L"NIKON D70";
  AddingDialog dialog(question, texts, nullptr);
  dialog.findChild<QPushButton*>("fromExif")->click();
  EXPECT_EQ(dialog.name().camera, L"NIKON / D70");
  EXPECT_EQ(dialog.name().iso, L"100") << "the photograph does not tell";
  EXPECT_EQ(dialog.findChild<QLineEdit*>("camera")->maxLength(), 127);
}

TEST_F(DialogsTest, OptionsFollowTheCard) {
  settings::AppSettings settings(folder.path());
  for (const bool usable : {false, true}) {
    settings::OptionsState state(
        settings, localization, [usable] { return usable; }, 2);
    OptionsDialog dialog(state, localization, texts, "Graphics card: none", nullptr);
    auto* hardware = dialog.findChild<QCheckBox*>("control1076");
    auto* fusion = dialog.findChild<QRadioButton*>("control1098");
    EXPECT_EQ(hardware->isEnabled(), usable);
    EXPECT_FALSE(fusion->isEnabled());
    EXPECT_TRUE(dialog.findChild<QRadioButton*>("control1099")->isChecked());
    EXPECT_TRUE(dialog.findChild<QCheckBox*>("control1085")->isChecked());
    hardware->click();
    EXPECT_EQ(fusion->isEnabled(), usable);
    fusion->click();
    const settings::OptionsOutcome outcome = state.Accept();
    EXPECT_EQ(outcome.hwAccel, usable ? 1 : 0);
    EXPECT_EQ(outcome.fusion, usable ? 1 : 0);
  }
}

}  // namespace
}  // namespace mirellon::ui
