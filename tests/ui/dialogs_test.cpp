#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/dialogs/qt_dialogs.h"
#include "ui/dialogs/quality_slider.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/zoom_box.h"

namespace mirellon::ui {
namespace {

// What a user does with the next modal dialog, once.
class Modal {
 public:
  explicit Modal(std::function<void(QDialog&)> act) : act_(std::move(act)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return;
      timer_.stop();
      act_(*dialog);
    });
    timer_.start(5);
  }

 private:
  std::function<void(QDialog&)> act_;
  QTimer timer_;
};

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

TEST_F(DialogsTest, SaveAsksBeforeItReplaces) {
  const auto source = folder / "source <b>.png";
  const auto other = folder / "other <b>.png";
  test::WriteBytes(source, "x");
  test::WriteBytes(other, "x");
  std::filesystem::create_symlink(source, folder / "link.png");
  struct Case {
    std::filesystem::path target;
    int button;  // 0: no question is asked
    bool accepted;
    const char* text;
  };
  const Case cases[] = {{folder / "new.png", 0, true, ""},
                        {other, QMessageBox::No, false, "replace"},
                        {other, QMessageBox::Yes, true, "other <b>.png"},
                        {source, QMessageBox::Ok, false, "original"},
                        {folder / "link.png", QMessageBox::Ok, false, "original"}};
  for (const Case& c : cases) {
    SaveDialog dialog({L"Save As...", {c.target.parent_path() / c.target.stem(), 3, ".png"}, 8, 70, source},
                      texts, nullptr);
    bool asked = false;
    const Modal user([&](QDialog& question) {
      auto& box = dynamic_cast<QMessageBox&>(question);
      asked = true;
      EXPECT_TRUE(box.text().contains(c.text)) << box.text().toStdString();
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      box.button(static_cast<QMessageBox::StandardButton>(c.button))->click();
    });
    dialog.accept();
    EXPECT_EQ(asked, c.button != 0) << c.target;
    EXPECT_EQ(dialog.result() == QDialog::Accepted, c.accepted) << c.target;
  }
}

TEST_F(DialogsTest, ChoicesAreAnsweredByIndex) {
  QtDialogs dialogs(texts);
  const auto answerTo = [&](bool careful, const std::function<void(QMessageBox&)>& act) {
    const Modal user([&](QDialog& dialog) { act(dynamic_cast<QMessageBox&>(dialog)); });
    return careful ? dialogs.AskCarefully(L"?", L"", {L"first", L"second"})
                   : dialogs.AskChoice(L"?", L"", {L"first", L"second"});
  };
  const auto press = [](Qt::Key key) { return [key](QMessageBox& box) { QTest::keyClick(&box, key); }; };
  EXPECT_EQ(answerTo(false, press(Qt::Key_Return)), 0);
  EXPECT_EQ(answerTo(true, press(Qt::Key_Return)), std::nullopt) << "nothing is lost by Return";
  EXPECT_EQ(answerTo(true, press(Qt::Key_Escape)), std::nullopt);
  for (const bool careful : {false, true}) {
    EXPECT_EQ(answerTo(careful,
                       [](QMessageBox& box) {
                         for (auto* button : box.buttons()) {
                           if (button->text().endsWith("second")) button->click();
                         }
                       }),
              1);
  }
}

TEST_F(DialogsTest, OpenBeginsBesideThePhotograph) {
  std::filesystem::create_directory(folder / "photographs");
  QtDialogs dialogs(texts);
  dialogs.LookBeside(folder / "photographs" / "a.jpg");
  QString directory;
  const Modal user([&](QDialog& dialog) {
    directory = dynamic_cast<QFileDialog&>(dialog).directory().absolutePath();
    dialog.reject();
  });
  EXPECT_EQ(dialogs.AskOpenPath(L"Open"), std::nullopt);
  EXPECT_EQ(PathOf(directory), folder / "photographs");
}

TEST_F(DialogsTest, ZoomListTakesUsualAndTypedZooms) {
  ZoomBox box(QStringLiteral("Zoom"));
  box.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
  QStringList entries;
  for (int i = 0; i < box.count(); ++i) entries.append(box.itemText(i));
  EXPECT_EQ(entries.join(' '), "10.0 % 25.0 % 50.0 % 100.0 % 150.0 % 200.0 % 400.0 % 800.0 %");
  std::vector<double> chosen;
  QObject::connect(&box, &ZoomBox::zoomChosen, [&](double zoom) { chosen.push_back(zoom); });
  box.ShowZoom(0.667);
  const auto type = [&](const char* text, Qt::Key end) {
    box.lineEdit()->setFocus();
    box.lineEdit()->selectAll();
    QTest::keyClicks(box.lineEdit(), text);
    QTest::keyClick(box.lineEdit(), end);
  };
  type("33,5", Qt::Key_Return);
  EXPECT_EQ(chosen, std::vector<double>{0.335});
  type("rubbish", Qt::Key_Return);
  EXPECT_EQ(box.currentText(), "66.7 %");
  box.lineEdit()->selectAll();
  QTest::keyClicks(box.lineEdit(), "77");
  box.lineEdit()->clearFocus();
  EXPECT_EQ(box.currentText(), "66.7 %") << "left";
  EXPECT_EQ(chosen.size(), 1U);
  EXPECT_FALSE(box.lineEdit()->acceptDrops()) << "a photograph is no zoom";
  box.ShowNothing();
  EXPECT_EQ(box.currentText(), "");
}

TEST_F(DialogsTest, TooltipsShowNamesAsTheyAre) {
  EXPECT_EQ(PlainToolTip("a & b"), "a & b");
  EXPECT_EQ(PlainToolTip("a & <b>.jpg"), "<span>a &amp; &lt;b&gt;.jpg</span>");
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
