// Batch denoising through the real dialogs, from the menu to the report.
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>

#include <gtest/gtest.h>

#include "imageio/image_files.h"
#include "profiles/profile_store.h"
#include "support/test_pictures.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/local_url.h"
#include "ui/opened_folders.h"
#include "ui/parameter_panel.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

namespace fs = std::filesystem;
using test::ModalUser;
using test::WaitFor;
using test::WindowHarness;

class MainWindowBatchTest : public ::testing::Test {
 protected:
  MainWindowBatchTest() { fs::create_directories(harness.folder / "in"); }

  void WritePhoto(const std::string& name, int width = 200, int height = 150) {
    ASSERT_FALSE(test::WritePicture(harness.folder / name, test::PhotoLikePicture(width, height, 3, 8, 11)));
  }

  // Chooses the folder in the dialog, or takes the one proposed.
  void ExpectFolder(const fs::path& chosen) {
    user.Expect("folderDialog", [chosen](QWidget* widget) {
      auto* dialog = qobject_cast<QFileDialog*>(widget);
      EXPECT_EQ(dialog->windowTitle(), "Select folder to denoise");
      if (!chosen.empty()) {
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(chosen.string()));
      }
      QMetaObject::invokeMethod(dialog, "accept");
    });
  }
  void ExpectOptions(const char* button) {
    user.Expect("batchOptionsDialog",
                [button](QWidget* dialog) { dialog->findChild<QPushButton*>(button)->click(); });
  }
  void ExpectQuestion(const QString& answer) {
    user.Expect("question", [answer](QWidget* widget) {
      const auto buttons = qobject_cast<QMessageBox*>(widget)->buttons();
      const auto wanted = std::find_if(buttons.begin(), buttons.end(), [&](const QAbstractButton* button) {
        return button->text() == answer;
      });
      ASSERT_NE(wanted, buttons.end()) << answer.toStdString();
      (*wanted)->click();
    });
  }

  BatchProgressDialog* Progress() { return harness.Find<BatchProgressDialog>("batchProgressDialog"); }
  QDialog* Report() { return harness.Find<QDialog>("batchReportDialog"); }
  void StartOnFolder() {
    ExpectFolder(harness.folder / "in");
    ExpectOptions("ok1");
    harness.Action(Command::kBatch)->trigger();
  }
  void WaitForReport() {
    ASSERT_TRUE(WaitFor([this] { return Report() != nullptr && Report()->isVisible(); }));
  }
  // Until a picture is in work.
  void WaitForWork() {
    ASSERT_TRUE(WaitFor(
        [this] { return !Progress()->findChild<ThumbnailView*>("thumbnailBefore")->image().isNull(); }));
  }
  std::size_t Results() { return test::FilesIn(harness.folder / "in/denoised"); }
  void Drop(const std::vector<fs::path>& paths) {
    QMimeData mime;
    QList<QUrl> urls;
    for (const fs::path& path : paths) urls += UrlOf(path);
    mime.setUrls(urls);
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(harness.window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(harness.window.get(), &drop);
  }

  WindowHarness harness{{}, WindowHarness::Ask::kUser};
  ModalUser user;
};

TEST_F(MainWindowBatchTest, RunsFromTheMenuToTheReport) {
  for (const char* name : {"in/a.jpg", "in/b.png", "in/c.tif", "in/sub/d.bmp"}) {
    fs::create_directories((harness.folder / name).parent_path());
    WritePhoto(name);
  }
  ASSERT_TRUE(
      test::SaveBitmap(FIF_GIF, test::NoiseBitmap(FIT_BITMAP, 40, 40, 8), harness.folder / "in/e.gif"));
  WritePhoto("in/small.png", 10, 10);
  test::WriteBytes(harness.folder / "in/broken.jpg", "\xFF\xD8\xFF\xE0 broken");
  test::WriteBytes(harness.folder / "in/notes.txt", "none of its business");
  harness.Open(harness.folder / "in/a.jpg");
  ExpectFolder(harness.folder / "in");
  user.Expect("batchOptionsDialog", [](QWidget* dialog) {
    auto* slider = dialog->findChild<QSlider*>("control1082");
    while (slider->value() < 90) QTest::keyClick(slider, Qt::Key_Right);
    dialog->findChild<QPushButton*>("ok1")->click();
  });
  harness.Action(Command::kBatch)->trigger();

  // Busy.
  EXPECT_FALSE(harness.session().hasImage());
  EXPECT_EQ(harness.window->windowTitle(), "Mirellon");
  ASSERT_NE(Progress(), nullptr);
  EXPECT_TRUE(Progress()->isVisible());
  EXPECT_FALSE(Progress()->isModal());
  EXPECT_EQ(harness.window->cursor().shape(), Qt::WaitCursor);
  for (const int number : {32771, 32773, 32793, 32794, 32795, 32799, 32800, 32806, 32807, 32809}) {
    EXPECT_FALSE(harness.Action(static_cast<Command>(number))->isEnabled()) << number;
  }
  int greyed = 0;
  for (const QAction* action : harness.window->menuBar()->actions()) greyed += action->isEnabled() ? 0 : 1;
  EXPECT_GE(greyed, 3);
  EXPECT_FALSE(harness.Find<QPushButton>("startOpen")->isEnabled());
  WaitForReport();

  // Still busy, until the report has been read.
  EXPECT_EQ(Report()->windowTitle(), "Report");
  EXPECT_TRUE(WaitFor([&] { return Progress() == nullptr; }));
  EXPECT_FALSE(harness.Action(Command::kOpen)->isEnabled());
  const QAbstractItemModel& model = *Report()->findChild<QTreeView*>("reportList")->model();
  QStringList rows;
  for (int row = 0; row < model.rowCount(); ++row) {
    rows += model.index(row, 0).data().toString() + ' ' + model.index(row, 1).data().toString();
  }
  EXPECT_EQ(rows, QStringList({"broken.jpg Failed", "small.png Skipped", "a.jpg Denoised", "b.png Denoised",
                               "c.tif Denoised", "e.gif Denoised", "sub/d.bmp Denoised"}));
  const test::OpenedFolders opened;
  Report()->findChild<QPushButton*>("openFolder")->click();
  EXPECT_EQ(opened.folders(), std::vector{harness.folder / "in/denoised"});
  Report()->findChild<QPushButton*>("close")->click();
  EXPECT_TRUE(harness.Action(Command::kOpen)->isEnabled());
  EXPECT_NE(harness.window->cursor().shape(), Qt::WaitCursor);
  EXPECT_EQ(Results(), 4U);
  EXPECT_EQ(test::FilesIn(harness.folder / "in/sub/denoised"), 1U);
  EXPECT_EQ(harness.settings.GetNumber(settings::Setting::kJpeg), 90);
}

TEST_F(MainWindowBatchTest, TakesSettingsThatWereKeptJustNow) {
  WritePhoto("in/a.png");
  harness.Open(harness.folder / "in/a.png");
  user.Expect("addingDialog", [](QWidget* dialog) {
    dialog->findChild<QLineEdit*>("camera")->setText("Maker / Model");
    QMetaObject::invokeMethod(dialog, "accept");
  });
  harness.Find<QToolButton>("saveSetting")->click();
  ASSERT_TRUE(harness.window->panel().changed());
  StartOnFolder();
  profiles::NoiseProfileStore store(profiles::StandardProfilePaths(harness.folder / "config", {}));
  EXPECT_FALSE(store.Load());
  EXPECT_NE(store.FindCamera(L"Maker / Model"), 0U);
  WaitForReport();
  Report()->close();
}

TEST_F(MainWindowBatchTest, AsksBeforeItStarts) {
  WritePhoto("in/a.png");
  // The folder is remembered though the options are cancelled, the quality is not.
  ExpectFolder(harness.folder / "in");
  user.Expect("batchOptionsDialog", [](QWidget* dialog) {
    QTest::keyClick(dialog->findChild<QSlider*>("control1082"), Qt::Key_Left);
    QTest::keyClick(dialog, Qt::Key_Escape);
  });
  harness.Action(Command::kBatch)->trigger();
  EXPECT_TRUE(harness.window->workbench().idle());
  EXPECT_EQ(harness.settings.GetLatestFolder(), harness.folder / "in");
  EXPECT_EQ(settings::ReadJpegQuality(harness.folder / "config"), 85);
  // And proposed: accepted as it is, it is the folder.
  user.Expect("folderDialog", [this](QWidget* widget) {
    auto* dialog = qobject_cast<QFileDialog*>(widget);
    EXPECT_EQ(dialog->directory().absolutePath().toStdString(), (harness.folder / "in").string());
    QMetaObject::invokeMethod(dialog, "accept");
  });
  ExpectOptions("cancel2");
  harness.Action(Command::kBatch)->trigger();
  EXPECT_EQ(harness.settings.GetLatestFolder(), harness.folder / "in");
  user.Expect("folderDialog", [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
  harness.Action(Command::kBatch)->trigger();
  EXPECT_FALSE(fs::exists(harness.folder / "in/denoised"));
  EXPECT_EQ(Progress(), nullptr);
}

TEST_F(MainWindowBatchTest, CancelFinishesThePictureInWork) {
  for (const char* name : {"in/a.png", "in/b.png", "in/c.png"}) WritePhoto(name, 1200, 900);
  StartOnFolder();
  WaitForWork();
  QTest::keyClick(Progress(), Qt::Key_Escape);
  EXPECT_FALSE(harness.Action(Command::kOpen)->isEnabled()) << "the picture is finished first";
  WaitForReport();
  EXPECT_EQ(Results(), 1U);
  EXPECT_TRUE(Report()->findChild<QLabel*>("reportText")->text().contains("successfully finished"));
  QTest::keyClick(Report(), Qt::Key_Escape);
  EXPECT_TRUE(harness.Action(Command::kOpen)->isEnabled());
  // Nothing of it stays for the next run.
  StartOnFolder();
  WaitForReport();
  EXPECT_EQ(Results(), 3U);
  Report()->close();
}

TEST_F(MainWindowBatchTest, ClosingAsksAndWaitsForThePictureInWork) {
  for (const char* name : {"in/a.png", "in/b.png", "in/c.png"}) WritePhoto(name, 1200, 900);
  int closed = 0;
  QObject::connect(harness.window.get(), &MainWindow::closed, [&] { ++closed; });
  StartOnFolder();
  WaitForWork();
  ExpectQuestion("Cancel");
  EXPECT_FALSE(harness.window->close());
  EXPECT_TRUE(Progress()->isVisible()) << "it goes on";
  ExpectQuestion("Yes");
  EXPECT_FALSE(harness.window->close());
  EXPECT_FALSE(harness.window->close()) << "no further question";
  ASSERT_TRUE(WaitFor([&] { return closed > 0; }));
  EXPECT_FALSE(harness.window->isVisible());
  EXPECT_EQ(Report(), nullptr);
  EXPECT_GE(Results(), 1U);
  EXPECT_LT(Results(), 3U);
  for (const auto& entry : fs::directory_iterator(harness.folder / "in/denoised")) {
    EXPECT_FALSE(test::ReadPicture(entry.path()).empty()) << "whole";
  }
}

TEST_F(MainWindowBatchTest, ClosesBehindAReport) {
  StartOnFolder();
  WaitForReport();
  EXPECT_TRUE(harness.window->close());
  EXPECT_FALSE(harness.window->isVisible());
}

TEST_F(MainWindowBatchTest, TheRunMayEndDuringTheQuestion) {
  WritePhoto("in/a.png");
  StartOnFolder();
  user.Expect("question", [this](QWidget* widget) {
    EXPECT_TRUE(WaitFor([this] { return Report() != nullptr; }));
    qobject_cast<QMessageBox*>(widget)->buttons().first()->click();
  });
  EXPECT_TRUE(harness.window->close());
  EXPECT_EQ(Results(), 1U);
}

TEST_F(MainWindowBatchTest, TellsOfAFolderThatCouldNotBeMade) {
  WritePhoto("in/a.png");
  WritePhoto("in/b.png");
  fs::create_symlink("nowhere/at/all", harness.folder / "in/denoised");
  StartOnFolder();
  WaitForReport();
  EXPECT_TRUE(Report()->findChild<QLabel*>("reportSummary")->text().startsWith("The folder "));
  EXPECT_TRUE(Report()->findChild<QLabel*>("reportText")->text().contains("successfully finished"));
  EXPECT_EQ(Report()->findChild<QTreeView*>("reportList")->model()->rowCount(), 1) << "and that ends it";
  Report()->close();
}

TEST_F(MainWindowBatchTest, TakesWhatIsDropped) {
  for (const char* name : {"in/a.png", "in/b.png", "in/c.png"}) WritePhoto(name);
  const fs::path odd = std::string((harness.folder / "in").string() + "/\xE9t\xE9.png");
  fs::copy_file(harness.folder / "in/a.png", odd);
  // One photograph is opened, without a question.
  Drop({odd});
  ASSERT_TRUE(WaitFor([&] { return harness.session().hasImage(); }));
  EXPECT_EQ(harness.session().photograph().path, odd);
  harness.WaitUntilIdle();
  // Of several the first, if that is wished.
  ExpectQuestion("Open the First");
  Drop({harness.folder / "in/b.png", odd});
  ASSERT_TRUE(WaitFor([&] { return harness.session().photograph().path == harness.folder / "in/b.png"; }));
  harness.WaitUntilIdle();
  // Or all of them.
  ExpectQuestion("Denoise All");
  ExpectOptions("ok1");
  Drop({harness.folder / "in/b.png", odd});
  WaitForReport();
  Report()->close();
  EXPECT_EQ(Results(), 2U);
  EXPECT_TRUE(harness.settings.GetLatestFolder().empty());
  // A folder, with a photograph beside it.
  fs::create_directory(harness.folder / "other");
  WritePhoto("other/d.png");
  ExpectQuestion("Denoise All");
  ExpectOptions("ok1");
  Drop({harness.folder / "in", harness.folder / "other/d.png"});
  WaitForReport();
  Report()->close();
  EXPECT_EQ(Results(), 4U);
  EXPECT_EQ(test::FilesIn(harness.folder / "other/denoised"), 1U);
  // A photograph on its way gives way to it, even a large one.
  WritePhoto("large.png", 3000, 2500);
  ASSERT_TRUE(harness.window->Open(harness.folder / "large.png"));
  ASSERT_TRUE(WaitFor([this] { return !harness.Action(Command::kBatch)->isEnabled(); }));
  ExpectQuestion("Denoise All");
  ExpectOptions("ok1");
  Drop({harness.folder / "other"});
  WaitForReport();
  Report()->close();
  EXPECT_FALSE(harness.session().hasImage());
  ExpectQuestion("Cancel");
  Drop({harness.folder / "in"});
  QTest::qWait(0);
  EXPECT_TRUE(WaitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

}  // namespace
}  // namespace mirellon::ui
