#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <vector>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "ui/dialogs/batch_options_dialog.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/batch_report_dialog.h"
#include "ui/local_url.h"
#include "ui/opened_folders.h"

namespace mirellon::ui {
namespace {

using batch::EntryEnd;
using batch::EntryReason;

class BatchDialogsTest : public ::testing::Test {
 protected:
  static QString TextOfLabel(const QWidget& dialog, const char* name) {
    return dialog.findChild<QLabel*>(QLatin1String(name))->text();
  }

  settings::Localization localization;
  Texts texts{localization};
};

TEST_F(BatchDialogsTest, ProgressTellsTheTime) {
  BatchProgressDialog dialog(texts, nullptr);
  EXPECT_EQ(dialog.windowTitle(), "Batch Denoising");
  EXPECT_EQ(TextOfLabel(dialog, "control1075"), "Estimated time");
  EXPECT_EQ(TextOfLabel(dialog, "control1078"), "Elapsed time");
  EXPECT_EQ(TextOfLabel(dialog, "control1009"), "00:00");
  EXPECT_EQ(TextOfLabel(dialog, "control1010"), "00:00");
  EXPECT_EQ(TextOfLabel(dialog, "remaining"), "") << "not counted yet";
  const auto* bar = dialog.findChild<QProgressBar*>("control1008");
  struct Step {
    int seconds;  // that pass before one image more is done
    const char* elapsed;
    const char* estimate;
    const char* remaining;
  };
  dialog.SetTotal(3);
  EXPECT_EQ(bar->maximum(), 3);
  EXPECT_EQ(TextOfLabel(dialog, "remaining"), "3");
  int done = 0;
  // 65 * 3 / 1, 66 * 3 / 2, 6000 * 3 / 3; and one that was not counted.
  for (const Step& step : {Step{65, "01:05", "03:15", "2"}, Step{1, "01:06", "01:39", "1"},
                           Step{5934, "100:00", "100:00", "0"}, Step{0, "100:00", "75:00", "0"}}) {
    for (int i = 0; i < step.seconds; ++i) dialog.Tick();
    dialog.ImageDone();
    EXPECT_EQ(TextOfLabel(dialog, "control1010"), step.elapsed);
    EXPECT_EQ(TextOfLabel(dialog, "control1009"), step.estimate);
    EXPECT_EQ(TextOfLabel(dialog, "remaining"), step.remaining);
    EXPECT_EQ(bar->value(), std::min(++done, 3));
  }
}

TEST_F(BatchDialogsTest, ProgressCanBeCountedLate) {
  BatchProgressDialog dialog(texts, nullptr);
  for (int i = 0; i < 10; ++i) dialog.Tick();
  dialog.ImageDone();
  EXPECT_EQ(TextOfLabel(dialog, "control1009"), "00:00");
  dialog.SetTotal(4);
  EXPECT_EQ(TextOfLabel(dialog, "control1009"), "00:40");
  EXPECT_EQ(dialog.findChild<QProgressBar*>("control1008")->value(), 1);
}

TEST_F(BatchDialogsTest, ProgressShowsTheFileInWork) {
  BatchProgressDialog dialog(texts, nullptr);
  dialog.show();
  const QSize before = dialog.size();
  dialog.ShowEntry(std::string("/in/<b>bold\n\xFF") + std::string(300, 'x') + ".jpg");
  EXPECT_TRUE(TextOfLabel(dialog, "entry").startsWith("<b>bold?"));
  EXPECT_TRUE(dialog.findChild<QLabel*>("entry")->toolTip().contains("&lt;b&gt;")) << "no markup";
  auto* thumbnail = dialog.findChild<ThumbnailView*>("thumbnailBefore");
  QImage image(60, 40, QImage::Format_RGB888);
  image.fill(Qt::red);
  dialog.ShowBefore(image);
  QTest::qWait(0);
  EXPECT_EQ(dialog.size(), before) << "neither a long name nor a picture moves anything";
  EXPECT_EQ(thumbnail->grab().toImage().pixelColor(thumbnail->rect().center()), QColor(Qt::red));
  dialog.ShowEntry("/in/c.jpg");
  EXPECT_NE(thumbnail->grab().toImage().pixelColor(thumbnail->rect().center()), QColor(Qt::red));
}

TEST_F(BatchDialogsTest, ProgressIsCancelledByButtonKeyAndFrame) {
  for (const char* way : {"button", "key", "frame"}) {
    BatchProgressDialog dialog(texts, nullptr);
    int rejected = 0;
    QObject::connect(&dialog, &QDialog::rejected, [&] { ++rejected; });
    dialog.show();
    if (way == std::string("button")) {
      dialog.findChild<QPushButton*>("cancel2")->click();
    } else if (way == std::string("key")) {
      QTest::keyClick(&dialog, Qt::Key_Escape);
    } else {
      dialog.close();
    }
    EXPECT_EQ(rejected, 1) << way;
    EXPECT_FALSE(dialog.isVisible()) << way;
  }
}

TEST_F(BatchDialogsTest, OptionsAskForTheQuality) {
  BatchOptionsDialog dialog(3, texts, nullptr);
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  EXPECT_EQ(dialog.windowTitle(), "Batch denoising options");
  EXPECT_TRUE(TextOfLabel(dialog, "control1111").contains("<<Unknown Camera>>"));
  EXPECT_EQ(TextOfLabel(dialog, "control1083"), "10");
  EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QPushButton*>("ok1"));
  QTest::keyClick(dialog.focusWidget(), Qt::Key_J, Qt::AltModifier);
  EXPECT_EQ(dialog.focusWidget()->objectName(), "control1082");
  QTest::keyClick(dialog.focusWidget(), Qt::Key_Right);
  EXPECT_EQ(dialog.jpegQuality(), 11);
  QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

class BatchReportTest : public BatchDialogsTest {
 protected:
  BatchReportTest() {
    std::filesystem::create_directories(folder / "in/denoised");
    outcome.entries = {
        {folder / "in/IMG_10.jpg", folder / "in/denoised/IMG_10.jpg", EntryEnd::kDone, EntryReason::kNone,
         "the metadata was not copied"},
        {folder / "in/IMG_9.jpg", folder / "in/denoised/IMG_9.jpg", EntryEnd::kDone, EntryReason::kNone, {}},
        {folder / "in/sub/<b>\t\xFF.jpg", {}, EntryEnd::kFailed, EntryReason::kNotWritten, "disk full"},
        {folder / "in/small.png", {}, EntryEnd::kSkipped, EntryReason::kTooSmall, "smaller than 16 pixels"}};
  }

  // A column from top to bottom.
  static std::string Column(const BatchReportDialog& dialog, int column) {
    const QAbstractItemModel& model = *dialog.findChild<QTreeView*>("reportList")->model();
    QStringList cells;
    for (int row = 0; row < model.rowCount(); ++row) cells += model.index(row, column).data().toString();
    return cells.join('|').toStdString();
  }

  test::TemporaryFolder folder;
  BatchWork work{{folder / "in"}};
  BatchOutcome outcome;
};

TEST_F(BatchReportTest, ListsTheWorstFirstAndSorts) {
  BatchReportDialog dialog(work, outcome, texts, nullptr);
  EXPECT_EQ(dialog.windowTitle(), "Report");
  EXPECT_EQ(TextOfLabel(dialog, "reportText"),
            "Batch denoising was successfully finished! You can find denoised images in subfolder named "
            "denoised in chosen folder.");
  EXPECT_EQ(TextOfLabel(dialog, "reportSummary"), "Denoised: 2  ·  Skipped: 1  ·  Failed: 1");
  const std::string strange = "sub/<b>?\xEF\xBF\xBD.jpg";
  EXPECT_EQ(Column(dialog, 0), strange + "|small.png|IMG_9.jpg|IMG_10.jpg");
  EXPECT_EQ(Column(dialog, 1), "Failed|Skipped|Denoised|Denoised");
  EXPECT_EQ(Column(dialog, 2),
            "the result could not be written|smaller than 16 pixels||the metadata was not copied");
  auto* list = dialog.findChild<QTreeView*>("reportList");
  list->setCurrentIndex(list->model()->index(1, 0));
  list->sortByColumn(0, Qt::AscendingOrder);
  EXPECT_EQ(Column(dialog, 0), "IMG_9.jpg|IMG_10.jpg|small.png|" + strange);
  EXPECT_EQ(list->currentIndex().row(), 2) << "the row stays the one chosen";
  list->sortByColumn(0, Qt::DescendingOrder);
  EXPECT_EQ(Column(dialog, 0), strange + "|small.png|IMG_10.jpg|IMG_9.jpg");
  const QString tip = list->model()->index(0, 0).data(Qt::ToolTipRole).toString();
  EXPECT_TRUE(tip.contains("&lt;b&gt;")) << tip.toStdString();
  EXPECT_TRUE(list->model()->index(0, 2).data(Qt::ToolTipRole).toString().contains("disk"))
      << tip.toStdString();
}

TEST_F(BatchReportTest, CopiesLines) {
  BatchReportDialog dialog(work, outcome, texts, nullptr);
  dialog.findChild<QPushButton*>("copyList")->click();
  const QStringList lines = QGuiApplication::clipboard()->text().split('\n');
  ASSERT_EQ(lines.size(), 5) << "each ends its line";
  EXPECT_EQ(lines[0].count('\t'), 3) << "a name brings none of its own";
  EXPECT_TRUE(lines[0].endsWith("\tFailed\tthe result could not be written\tdisk full"));
  EXPECT_EQ(lines[1].toStdString(), (folder / "in/small.png").string() + "\tSkipped\tsmaller than 16 pixels");
  EXPECT_EQ(lines[2].toStdString(), (folder / "in/IMG_9.jpg").string() + "\tDenoised");
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  auto* list = dialog.findChild<QTreeView*>("reportList");
  list->setFocus();
  list->setCurrentIndex(list->model()->index(1, 0));
  QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), lines[1].toStdString() + '\n')
      << "what is selected";
}

TEST_F(BatchReportTest, OpensFoldersAndClosesByKeyboard) {
  const test::OpenedFolders opened;
  BatchReportDialog dialog(work, outcome, texts, nullptr);
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  EXPECT_EQ(dialog.focusWidget()->objectName(), "close");
  QTest::keyClick(&dialog, Qt::Key_O, Qt::AltModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !opened.folders().empty(); }));
  EXPECT_EQ(opened.folders().front(), folder / "in/denoised");
  auto* list = dialog.findChild<QTreeView*>("reportList");
  list->setFocus();
  list->setCurrentIndex(list->model()->index(0, 0));
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(opened.folders().back(), folder / "in/sub");
  EXPECT_TRUE(dialog.isVisible()) << "the key is the list's";
  const QPoint row = list->visualRect(list->model()->index(2, 0)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row);
  EXPECT_EQ(opened.folders().back(), folder / "in/denoised");
  std::vector<std::string> stops;
  for (std::size_t i = 0; i < 4; ++i) {
    stops.push_back(dialog.focusWidget()->objectName().toStdString());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(stops, (std::vector<std::string>{"reportList", "openFolder", "copyList", "close"}));
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(BatchReportTest, TellsOfAFolderThatCouldNotBeMade) {
  outcome.summary.end = batch::BatchSummary::End::kNoOutputFolder;
  outcome.entries = {
      {folder / "in/a.jpg", {}, EntryEnd::kFailed, EntryReason::kNoFolder, "Permission denied"}};
  const BatchReportDialog dialog(work, outcome, texts, nullptr);
  EXPECT_TRUE(TextOfLabel(dialog, "reportSummary")
                  .startsWith(QString::fromStdString("The folder " + (folder / "in/denoised").string())));
  const BatchReportDialog empty(work, {}, texts, nullptr);
  EXPECT_TRUE(empty.findChild<QTreeView*>("reportList")->isHidden());
  EXPECT_FALSE(empty.findChild<QPushButton*>("copyList")->isEnabled());
}

TEST_F(BatchDialogsTest, EveryControlHasANameAndAKey) {
  BatchProgressDialog progress(texts, nullptr);
  BatchOptionsDialog options(85, texts, nullptr);
  BatchReportDialog report({}, {}, texts, nullptr);
  for (const QDialog* dialog :
       {static_cast<QDialog*>(&progress), static_cast<QDialog*>(&options), static_cast<QDialog*>(&report)}) {
    QStringList keys;
    for (const QPushButton* button : dialog->findChildren<QPushButton*>()) {
      EXPECT_FALSE(button->objectName().isEmpty()) << button->text().toStdString();
      keys += button->shortcut().toString();
    }
    EXPECT_FALSE(keys.contains(QString())) << dialog->objectName().toStdString();
    EXPECT_EQ(keys.removeDuplicates(), 0) << dialog->objectName().toStdString();
  }
  for (const char* name : {"control1008", "control1009", "control1010", "remaining", "thumbnailBefore"}) {
    EXPECT_FALSE(progress.findChild<QWidget*>(name)->accessibleName().isEmpty()) << name;
  }
}

TEST(LocalUrlTest, KeepsEveryByte) {
  for (const std::string path : {"/a b/c.jpg", "/100%/a#b?c.jpg", "/caf\xC3\xA9", "/latin\xE9\xFF", "/%41"}) {
    EXPECT_EQ(PathOf(UrlOf(path)), path) << path;
    EXPECT_TRUE(UrlOf(path).isLocalFile()) << path;
  }
  EXPECT_TRUE(LocalPaths({QUrl("http://a/b.jpg"), QUrl("mailto:x")}).empty());
}

}  // namespace
}  // namespace mirellon::ui
