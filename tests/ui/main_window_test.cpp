#include "ui/main_window.h"

#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>
#include <unistd.h>

#include "base/paths.h"
#include "support/test_pictures.h"
#include "ui/model/recent_files.h"
#include "ui/parameter_panel.h"
#include "ui/tagged_photo.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using picture::PicBuf;
using test::WaitFor;
using test::WindowHarness;

PicBuf Photo(int width = 400, int height = 300) {
  return test::PhotoLikePicture(width, height, 3, 8, 11);
}

TEST(MainWindowTest, OpensShowsAndClosesAPhotograph) {
  WindowHarness harness;
  EXPECT_EQ(harness.window->windowTitle(), "Mirellon");
  EXPECT_TRUE(harness.Find<QWidget>("startHint")->isVisible());
  EXPECT_FALSE(harness.Action(Command::kSaveAs)->isEnabled());
  EXPECT_FALSE(harness.Find<QPushButton>("denoise1021")->isEnabled());
  EXPECT_EQ(harness.Find<QLabel>("hint")->text(), "Press Ctrl+O to open an image");

  const auto file = harness.WritePhotograph("a b.png", Photo());
  harness.dialogs.openPaths.push_back(file);
  QTest::keyClick(harness.window.get(), Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(WaitFor([&] { return harness.session().hasImage(); }));
  harness.WaitUntilIdle();
  EXPECT_EQ(harness.window->windowTitle(), QString("Mirellon - %1").arg(file.c_str()));
  EXPECT_FALSE(harness.Find<QWidget>("startHint")->isVisible());
  EXPECT_TRUE(harness.Action(Command::kSaveAs)->isEnabled());
  EXPECT_TRUE(harness.Find<QPushButton>("denoise1021")->isEnabled());
  EXPECT_TRUE(
      harness.Find<QLabel>("photographInfo")->text().startsWith(QString::fromUtf8("400×300 · 8 bit")));
  const ViewGeometry& geometry = harness.window->view().geometry();
  EXPECT_DOUBLE_EQ(geometry.zoom(), std::min(geometry.viewWidth() / 400.0, geometry.viewHeight() / 300.0));

  harness.Do(Command::kClose);
  EXPECT_EQ(harness.window->windowTitle(), "Mirellon");
  EXPECT_FALSE(harness.Action(Command::kSaveAs)->isEnabled());
  EXPECT_TRUE(harness.Action(Command::kOpen)->isEnabled());
  EXPECT_FALSE(harness.Find<QComboBox>("zoomList")->isEnabled());
  EXPECT_EQ(harness.window->view().shown(), kDrawNothing);
}

TEST(MainWindowTest, TellsWhyAPhotographCannotBeOpened) {
  WindowHarness harness;
  const auto good = harness.WritePhotograph("good.png", Photo());
  harness.Open(good);
  test::WriteBytes(harness.folder / "bad.jpg", "this is no picture");
  harness.Open(harness.folder / "bad.jpg");
  ASSERT_EQ(harness.dialogs.messages.size(), 1U);
  EXPECT_EQ(harness.dialogs.messages[0].rfind(L"Image format not supported!", 0), 0U);
  EXPECT_NE(harness.dialogs.messages[0].find(L"bad.jpg"), std::wstring::npos);
  EXPECT_EQ(harness.session().photograph().path, good);
  harness.window->Open(harness.folder / "missing.jpg");
  harness.Open(good);
  EXPECT_EQ(harness.dialogs.messages.size(), 1U) << "a load that was replaced says nothing";
  // Memory is refused without a word of the loader's.
  emit const_cast<Workbench&>(harness.window->workbench())
      .loadFailed(good, {imageio::LoadStatus::kOutOfMemory, {}, {}, {}});
  EXPECT_NE(harness.dialogs.messages.back().find(L"not enough memory"), std::wstring::npos);
}

TEST(MainWindowTest, WalksTheFolderAndTakesDroppedFiles) {
  WindowHarness harness;
  const auto a = harness.WritePhotograph("a.png", Photo(60, 40));
  const auto b = harness.WritePhotograph("b.png", Photo(40, 60));
  harness.Open(a);
  QTest::keyClick(&harness.window->view(), Qt::Key_PageDown);
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path == b; }));
  harness.WaitUntilIdle();
  QTest::keyClick(&harness.window->view(), Qt::Key_PageDown);
  EXPECT_TRUE(WaitFor([&] { return harness.Find<QLabel>("hint")->text().contains("last"); }));
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(a.c_str()), QUrl::fromLocalFile(b.c_str())});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(harness.window.get(), &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  harness.dialogs.choices = {1};  // the first one rather than all in a batch
  QCoreApplication::sendEvent(harness.window.get(), &drop);
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path == a; }));
  EXPECT_DOUBLE_EQ(harness.window->view().geometry().zoom(), 8.0) << "fitted, but not above 800 %";
}

TEST(MainWindowTest, RemembersPhotographsThatCanBeOpened) {
  WindowHarness harness;
  std::filesystem::create_directory(harness.folder / std::string(150, 'f'));
  const auto good = harness.WritePhotograph(std::string(150, 'f') + "/a&b [*]\t.png", Photo(40, 30));
  const auto bad = harness.folder / "bad.jpg";
  harness.Open(good);
  EXPECT_TRUE(harness.window->windowTitle().endsWith("a&b [*][*]?.png")) << "no place of a mark";
  const QAction* entry = harness.Find<QMenu>("recentMenu")->actions().front();
  EXPECT_TRUE(entry->text().startsWith("&1  a&&b [*]?.png")) << entry->text().toStdString();
  EXPECT_LT(entry->text().size(), 120);
  // Another window has opened something meanwhile.
  RecentFiles others;
  others.Load(base::SettingsFile(harness.context.applicationData));
  others.Add(bad);
  ASSERT_FALSE(others.Store(base::SettingsFile(harness.context.applicationData)));
  test::WriteBytes(bad, "this is no picture");
  harness.Open(bad);
  others.Load(base::SettingsFile(harness.context.applicationData));
  EXPECT_TRUE(others.files().empty()) << "neither what cannot be opened nor what no file can hold";
  EXPECT_EQ(harness.Find<QMenu>("recentMenu")->actions().size(), 3) << "a separator and Clear List";
}

TEST(MainWindowTest, RunsWithWhatWasTypedAndStopsByEscape) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo()));
  auto* value = harness.Find<QLineEdit>("value.m_dStrength");
  value->setFocus();
  value->selectAll();
  QTest::keyClicks(value, "33");
  QTest::keyClick(value, Qt::Key_D, Qt::ControlModifier);
  EXPECT_TRUE(harness.Find<QPushButton>("denoise1021")->hasFocus()) << "which aborts";
  harness.WaitUntilIdle();
  ASSERT_TRUE(harness.session().denoised());
  EXPECT_EQ(harness.window->panel().parameters().m_dStrength, 33.0);
  EXPECT_TRUE(
      harness.session().ResultIsOf(harness.window->panel().parameters(), harness.window->panel().quality()));

  harness.Open(harness.WritePhotograph("b.png", Photo(1600, 1200)));
  value->setFocus();
  QTest::keyClick(harness.window.get(), Qt::Key_1, Qt::ControlModifier);
  ASSERT_TRUE(harness.window->view().hasFocus()) << "its arrow keys are wanted now";
  harness.Do(Command::kDenoise);
  QTest::keyClick(&harness.window->view(), Qt::Key_Escape);
  harness.WaitUntilIdle();
  EXPECT_FALSE(harness.session().denoised());

  value->setFocus();
  harness.Do(Command::kDenoise);
  QTest::keyClick(harness.window->focusWidget(), Qt::Key_Escape);
  harness.WaitUntilIdle();
  EXPECT_FALSE(harness.session().denoised()) << "the button that aborts has the focus";
}

TEST(MainWindowTest, WalksPastWhatCannotBeOpened) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo(60, 40)));
  test::WriteBytes(harness.folder / "b.png", "broken");
  const auto c = harness.WritePhotograph("c.png", Photo(40, 60));
  harness.Do(Command::kNextImage);
  ASSERT_TRUE(WaitFor([&] { return harness.dialogs.messages.size() == 1; }));
  harness.Do(Command::kNextImage);
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path == c; }));
  EXPECT_EQ(harness.dialogs.messages.size(), 1U);
  harness.WaitUntilIdle();
}

TEST(MainWindowTest, AKeyHeldDownOpensWhereItIsLetGo) {
  WindowHarness harness;
  std::filesystem::path last;
  for (const char* name : {"a.png", "b.png", "c.png", "d.png", "e.png", "f.png", "g.png", "h.png"}) {
    last = harness.WritePhotograph(name, Photo(60, 40));
  }
  harness.Open(harness.folder / "a.png");
  QSignalSpy shown(&harness.window->workbench(), &Workbench::photographChanged);
  for (int i = 0; i < 20; ++i) QTest::keyClick(&harness.window->view(), Qt::Key_PageDown);
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path == last; }));
  EXPECT_LE(shown.count(), 2);
  for (int i = 0; i < 3; ++i) QTest::keyClick(&harness.window->view(), Qt::Key_PageDown);
  for (int i = 0; i < 5; ++i) QTest::keyClick(&harness.window->view(), Qt::Key_PageUp);
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path != last; }));
  EXPECT_LT(harness.session().photograph().path, last);
  harness.WaitUntilIdle();
}

TEST(MainWindowTest, TakesNoOtherPhotographWhileItDenoises) {
  WindowHarness harness;
  harness.Find<QComboBox>("qualityList")->setCurrentIndex(2);
  const auto a = harness.WritePhotograph("a.png", Photo(900, 700));
  const auto b = harness.WritePhotograph("b.png", Photo(60, 40));
  harness.Open(a);
  harness.Do(Command::kDenoise);
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(b.c_str())});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QCoreApplication::sendEvent(harness.window.get(), &enter);
  EXPECT_FALSE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(harness.window.get(), &drop);
  EXPECT_FALSE(harness.window->Open(b));
  for (const Command command : {Command::kOpen, Command::kNextImage, Command::kClose}) {
    EXPECT_FALSE(harness.Action(command)->isEnabled());
    harness.Do(command);
  }
  harness.WaitUntilIdle();
  EXPECT_TRUE(harness.session().denoised());
  EXPECT_EQ(harness.session().photograph().path, a);
  EXPECT_TRUE(harness.dialogs.questions.empty());
}

TEST(MainWindowTest, ShowsThatItIsBusy) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo(900, 700)));
  auto* button = harness.Find<QPushButton>("denoise1021");
  auto* bar = harness.Find<QProgressBar>("statusProgress");
  harness.dialogs.choices = {1};
  harness.dialogs.saveAnswers = {{harness.folder / "o.png", 85}};
  harness.Do(Command::kSaveAs);
  ASSERT_EQ(harness.session().activity(), Activity::kSaving);
  EXPECT_FALSE(button->isEnabled());
  EXPECT_FALSE(harness.window->workbench().progressPermille()) << "that of the preview before";
  ASSERT_TRUE(WaitFor([&] { return bar->maximum() == 0 || harness.window->workbench().idle(); }));
  EXPECT_EQ(harness.window->cursor().shape(), Qt::ArrowCursor);
  harness.WaitUntilIdle();
  EXPECT_TRUE(button->isEnabled());

  harness.Do(Command::kDenoise);
  EXPECT_EQ(harness.window->cursor().shape(), Qt::WaitCursor);
  EXPECT_EQ(harness.window->view().cursor().shape(), Qt::WaitCursor);
  EXPECT_EQ(button->cursor().shape(), Qt::ArrowCursor);
  harness.WaitUntilIdle();
  EXPECT_EQ(harness.window->view().cursor().shape(), Qt::ArrowCursor);
}

TEST(MainWindowTest, HintsAtWhatThePointerCanDo) {
  WindowHarness harness;
  auto* hint = harness.Find<QLabel>("hint");
  const Texts texts(harness.localization);
  harness.Open(harness.WritePhotograph("a.png", Photo()));
  EXPECT_EQ(hint->text(), texts(34));
  harness.Do(Command::kViewRemovedNoise);
  EXPECT_EQ(hint->text(), texts(18)) << "the rectangle is not shown";
  harness.Do(Command::kViewSingle);
  harness.Do(Command::kDenoise);
  harness.WaitUntilIdle();
  EXPECT_EQ(hint->text(), texts(44));
  harness.Do(Command::kPicker);
  EXPECT_EQ(hint->text(), texts(34));
  harness.Do(Command::kClose);
  EXPECT_EQ(harness.dialogs.questions.size(), 1U);
}

TEST(MainWindowTest, PreviewsAnewAfterARunThatWasStopped) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo(900, 700)));
  QSignalSpy previews(&harness.window->workbench(), &Workbench::previewReady);
  QTest::keyClick(harness.Find<QSlider>("slider.m_dStrength"), Qt::Key_Right);
  harness.Do(Command::kDenoise);
  harness.Find<QPushButton>("denoise1021")->click();
  harness.WaitUntilIdle();
  EXPECT_FALSE(harness.session().denoised());
  EXPECT_EQ(previews.count(), 1);
}

TEST(MainWindowTest, ASessionFromThePhotographToTheSavedFile) {
  WindowHarness harness;
  const auto file = harness.WritePhotograph("night.jpg", Photo());
  test::WriteTags(file, {{"Exif.Image.Make", "Maker"}, {"Exif.Image.Model", "Model"}});
  harness.dialogs.openPaths = {file};
  QTest::keyClick(harness.window.get(), Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(WaitFor([&] { return harness.session().hasImage(); }));
  harness.WaitUntilIdle();
  EXPECT_TRUE(harness.Find<QLabel>("imageInfo")->text().contains("Maker"));
  QTest::keyClick(harness.Find<QSlider>("slider.m_dStrength"), Qt::Key_Right);
  QTest::mouseClick(harness.Find<QPushButton>("denoise1021"), Qt::LeftButton);
  harness.WaitUntilIdle();
  const auto result = harness.session().result();
  const auto target = harness.folder / "saved.png";
  harness.dialogs.saveAnswers = {{target, 85}};
  QTest::keyClick(harness.window.get(), Qt::Key_S, Qt::ControlModifier);
  harness.WaitUntilIdle();
  EXPECT_TRUE(harness.dialogs.questions.empty() && harness.dialogs.messages.empty());
  EXPECT_EQ(test::TagOf(target, "Exif.Image.Make"), "Maker");
  EXPECT_EQ(test::TagOf(target, "Exif.Image.Model"), "Model");
  harness.Open(target);
  EXPECT_TRUE(test::SamePicture(*harness.session().photograph().source, *result));
  EXPECT_TRUE(harness.window->close());
}

TEST(MainWindowTest, DenoisesComparesAndSaves) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo()));
  auto* button = harness.Find<QPushButton>("denoise1021");
  EXPECT_EQ(button->text(), "Denoise");
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(button->text(), "Abort");
  EXPECT_FALSE(harness.Action(Command::kOpen)->isEnabled());
  EXPECT_FALSE(harness.Find<QSlider>("slider.m_dStrength")->isEnabled());
  harness.WaitUntilIdle();
  EXPECT_EQ(button->text(), "Redefine");
  ASSERT_TRUE(harness.session().denoised());
  EXPECT_FALSE(test::SamePicture(*harness.session().result(), *harness.session().photograph().source));

  ImageView& view = harness.window->view();
  QTest::mousePress(&view, Qt::RightButton);
  EXPECT_EQ(view.shown(), kDrawOriginal);
  QTest::mouseRelease(&view, Qt::RightButton);
  EXPECT_EQ(view.shown(), kDrawResult);

  const auto target = harness.folder / "out.jpg";
  harness.dialogs.saveAnswers.push_back({target, 77});
  QTest::keyClick(harness.window.get(), Qt::Key_S, Qt::ControlModifier);
  harness.WaitUntilIdle();
  ASSERT_EQ(harness.dialogs.saveQuestions.size(), 1U);
  EXPECT_EQ(harness.dialogs.saveQuestions[0].proposal.path, harness.folder / "a-denoised");
  EXPECT_EQ(harness.dialogs.saveQuestions[0].jpegQuality, 85);
  EXPECT_TRUE(std::filesystem::exists(target));
  EXPECT_EQ(harness.window->windowTitle(), QString("Mirellon - %1").arg(target.c_str()));
  EXPECT_EQ(harness.settings.GetNumber(settings::Setting::kJpeg), 77);
  EXPECT_TRUE(harness.dialogs.questions.empty());
}

TEST(MainWindowTest, SavesWhatWasNotDenoisedOnlyAfterAsking) {
  WindowHarness harness;
  harness.Open(harness.WritePhotograph("a.png", Photo()));
  harness.Do(Command::kSaveAs);
  EXPECT_EQ(harness.dialogs.questions.size(), 1U);
  EXPECT_TRUE(harness.dialogs.saveQuestions.empty()) << "cancelled";
  harness.dialogs.choices = {1};
  harness.Do(Command::kSaveAs);
  EXPECT_EQ(harness.dialogs.saveQuestions.size(), 1U);
  EXPECT_FALSE(harness.session().denoised());
  harness.dialogs.choices = {0};
  harness.dialogs.saveAnswers.push_back({harness.folder / "out.png", 85});
  harness.Do(Command::kSaveAs);
  ASSERT_TRUE(WaitFor([&] { return std::filesystem::exists(harness.folder / "out.png"); }));
  EXPECT_TRUE(harness.session().denoised());
  harness.WaitUntilIdle();
}

TEST(MainWindowTest, TellsWhyItCouldNotSave) {
  WindowHarness harness;
  const auto file = harness.WritePhotograph("a.png", Photo());
  harness.Open(file);
  harness.dialogs.choices = {1};
  harness.dialogs.saveAnswers.push_back({file, 85});
  harness.Do(Command::kSaveAs);
  harness.WaitUntilIdle();
  ASSERT_EQ(harness.dialogs.messages.size(), 1U);
  EXPECT_NE(harness.dialogs.messages[0].find(L"photograph itself"), std::wstring::npos);

  // No permission; root has it all, but not below a file.
  std::filesystem::path target = file / "out.png";
  if (geteuid() != 0) {
    std::filesystem::create_directory(harness.folder / "closed");
    std::filesystem::permissions(harness.folder / "closed", std::filesystem::perms::owner_read);
    target = harness.folder / "closed/out.png";
  }
  harness.dialogs.choices = {1};
  harness.dialogs.saveAnswers.push_back({target, 85});
  harness.Do(Command::kSaveAs);
  harness.WaitUntilIdle();
  ASSERT_EQ(harness.dialogs.messages.size(), 2U);
  EXPECT_NE(harness.dialogs.messages[1].find(L"out.png could not be saved"), std::wstring::npos);
  EXPECT_EQ(harness.window->windowTitle(), QString("Mirellon - %1").arg(file.c_str()));
}

TEST(MainWindowTest, ARunCanBeStopped) {
  WindowHarness harness;
  harness.Find<QComboBox>("qualityList")->setCurrentIndex(2);
  harness.Open(harness.WritePhotograph("a.png", Photo(1500, 1300)));
  auto* button = harness.Find<QPushButton>("denoise1021");
  button->click();
  button->click();
  harness.WaitUntilIdle();
  EXPECT_FALSE(harness.session().denoised());
  EXPECT_EQ(button->text(), "Denoise");
  EXPECT_TRUE(harness.dialogs.messages.empty());
  EXPECT_TRUE(harness.Action(Command::kOpen)->isEnabled());
}

TEST(MainWindowTest, AsksBeforeAResultIsLost) {
  WindowHarness harness;
  const auto file = harness.WritePhotograph("a.png", Photo());
  harness.Open(file);
  harness.Do(Command::kDenoise);
  harness.WaitUntilIdle();
  EXPECT_FALSE(harness.window->close());
  EXPECT_EQ(harness.dialogs.questions.size(), 1U) << "cancelled: it stays";
  harness.dialogs.choices = {0};
  EXPECT_FALSE(harness.window->close());
  EXPECT_EQ(harness.dialogs.saveQuestions.size(), 1U) << "the file dialog was cancelled: it stays";
  harness.dialogs.choices = {0};
  harness.dialogs.saveAnswers.push_back({harness.folder / "out.png", 85});
  bool closed = false;
  QObject::connect(harness.window.get(), &MainWindow::closed, [&] { closed = true; });
  EXPECT_FALSE(harness.window->close());
  ASSERT_TRUE(WaitFor([&] { return closed; })) << "saved, then closed";
  EXPECT_TRUE(std::filesystem::exists(harness.folder / "out.png"));
}

TEST(MainWindowTest, RemembersPhotographsAndColours) {
  WindowHarness harness;
  const auto file = harness.WritePhotograph("a&b.png", Photo());
  harness.Open(file);
  auto* menu = harness.Find<QMenu>("recentMenu");
  ASSERT_EQ(menu->actions().size(), 3);
  EXPECT_TRUE(menu->actions()[0]->text().contains("a&&b.png"));
  harness.Do(Command::kClose);
  menu->actions()[0]->trigger();
  ASSERT_TRUE(WaitFor([&] { return harness.session().hasImage(); }));
  harness.WaitUntilIdle();
  harness.Do(Command::kSchemeLight);
  EXPECT_EQ(harness.settings.GetNumber(settings::Setting::kColourScheme), 1);
}

}  // namespace
}  // namespace mirellon::ui
