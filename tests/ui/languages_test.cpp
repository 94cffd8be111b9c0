// The window and its dialogs in every language.
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSet>
#include <QTest>
#include <QTimer>
#include <functional>

#include <gtest/gtest.h>

#include "settings/text_table.h"
#include "skin/install.h"
#include "support/test_pictures.h"
#include "ui/clipped_texts.h"
#include "ui/dialogs/about_dialog.h"
#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/batch_options_dialog.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/batch_report_dialog.h"
#include "ui/dialogs/help_window.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/dialogs/qt_dialogs.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/failure_texts.h"
#include "ui/mnemonics.h"
#include "ui/parameter_panel.h"
#include "ui/toolkit_texts.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

constexpr int kLanguages = 6;
constexpr QSize kSmallScreen(960, 640);

settings::Localization InLanguage(int language) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "own.ini", "[General]\nLanguage Current=" + std::to_string(language) + "\n");
  settings::Localization localization = settings::LoadLocalization(
      {std::filesystem::path(MIRELLON_RESOURCES) / "Mirellon_loc.ini", folder / "own.ini"});
  localization.LoadLanguages();
  return localization;
}

// The skin and a size of text, both as the system found them when it is over.
class Looks {
 public:
  explicit Looks(double textScale) : font_(QApplication::font()) {
    skin::InstallSkin(*qobject_cast<QApplication*>(QApplication::instance()), 2);
    QFont scaled = font_;
    scaled.setPointSizeF(font_.pointSizeF() * textScale);
    QApplication::setFont(scaled);
  }
  ~Looks() { QApplication::setFont(font_); }
  Looks(const Looks&) = delete;
  Looks& operator=(const Looks&) = delete;

 private:
  QFont font_;
};

struct Case {
  int language;
  double textScale;
};

constexpr int kLayoutMs = 3000;

class LanguagesTest : public ::testing::TestWithParam<Case> {
 protected:
  // Shown as the program shows it, then measured.
  static void Check(QWidget& window, const char* name) {
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window)) << name;
    Measure(window, name);
  }
  static void Measure(QWidget& window, const char* name) {
    // What has just been shown may be laid out in more than one go.
    (void)QTest::qWaitFor([&window] { return test::ClippedTexts(window).isEmpty(); }, kLayoutMs);
    for (const QString& line : test::ClippedTexts(window))
      ADD_FAILURE() << name << ": " << line.toStdString();
    const QSize size = window.size();
    const bool fits = size.width() <= kSmallScreen.width() && size.height() <= kSmallScreen.height();
    EXPECT_TRUE(fits || GetParam().textScale > 1.0) << name << ": " << size.width() << "x" << size.height();
  }
  // Runs something modal and measures what it shows.
  void CheckModal(const std::function<void()>& run, const char* name) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return;
      timer.stop();
      Measure(*dialog, name);
      shown_ = true;
      dialog->reject();
    });
    timer.start(10);
    shown_ = false;
    run();
    EXPECT_TRUE(shown_) << name;
  }

  Looks looks_{GetParam().textScale};
  settings::Localization localization_ = InLanguage(GetParam().language);
  Texts texts_{localization_};
  bool shown_ = false;
};

TEST_P(LanguagesTest, NothingIsClippedInTheWindow) {
  test::WindowHarness harness(localization_);
  QWidget& window = *harness.window;
  window.resize(GetParam().textScale == 1.0 ? kSmallScreen : QSize(2560, 1440));
  Measure(window, "without a photograph");
  const picture::PicBuf photograph = test::PhotoLikePicture(320, 240, 3, 8, 1);
  harness.Open(harness.WritePhotograph("photograph.png", photograph.record()));
  ParameterPanel& panel = harness.window->panel();
  Photograph told;
  told.exif = {
      L"8.0", L"1/125 s", L"4928x3264", L"3200", L"NIKON CORPORATION", L"NIKON D4", L"2024:05:01 10:11:12"};
  panel.ShowPhotograph(told);
  harness.WaitUntilIdle();
  Measure(window, "with a photograph");
  panel.SetRunning(true, false);
  Measure(window, "running");
  panel.SetRunning(false, true);
  Measure(window, "denoised");
}

TEST_P(LanguagesTest, NothingIsClippedInTheDialogs) {
  test::TemporaryFolder folder;
  settings::AppSettings settings(folder.path());
  settings::OptionsState state(
      settings, localization_, [] { return true; }, 2);
  OptionsDialog options(state, localization_, texts_, texts_(267), nullptr);
  Check(options, "options");
  AddingDialog adding({{L"<<Unknown Camera>>", L"100"}, {}}, texts_, nullptr);
  Check(adding, "adding");
  BatchOptionsDialog batchOptions(85, texts_, nullptr);
  Check(batchOptions, "batch options");
  BatchProgressDialog batchProgress(texts_, nullptr);
  Check(batchProgress, "batch progress");
  AboutDialog about(texts_, texts_(265).arg("Renderer"), nullptr);
  Check(about, "about");
  BatchEntry done;
  done.input = folder / "a.jpg";
  done.output = folder / "denoised" / "a.jpg";
  BatchReportDialog report({{folder.path()}}, {{}, {done}}, texts_, nullptr);
  Check(report, "batch report");
  SaveDialog save({localization_.Text(56), {folder / "a-denoised", 4, ".jpg"}, 8, 85}, texts_, nullptr);
  Check(save, "save");
  HelpWindow help(texts_, folder / "settings.txt", nullptr);
  help.resize(kSmallScreen);
  Check(help, "help");
}

TEST_P(LanguagesTest, NothingIsClippedInQuestions) {
  QtDialogs dialogs(texts_);
  const auto wide = [&](int number) { return localization_.Text(number); };
  CheckModal([&] { dialogs.ShowMessage(wide(85), wide(81), base::MessageKind::kInformation); }, "crashed");
  CheckModal([&] { dialogs.ShowMessage(wide(88), wide(27), base::MessageKind::kInformation); }, "report");
  const std::wstring question = wide(137) + L"\n\n" + wide(138) + L"\n" + wide(139) + L"\n" + wide(140);
  CheckModal([&] { (void)dialogs.AskChoice(question, wide(81), {wide(253), wide(254)}); }, "deleting");
  CheckModal([&] { (void)dialogs.AskChoice(wide(227), wide(56), {wide(228), wide(229)}); }, "saving");
}

TEST_P(LanguagesTest, ASavesWarningSaysWhatItIsAbout) {
  const QString metadata = WarningOf(texts_, "exiftool is missing");
  EXPECT_TRUE(metadata == "exiftool is missing" || metadata.startsWith(texts_(text::kMetadataNotCopied)));
  const QString quality = WarningOf(texts_, imageio::kQualityNotStored);
  EXPECT_FALSE(quality.startsWith(texts_(text::kMetadataNotCopied))) << quality.toStdString();
  EXPECT_TRUE(quality.endsWith("settings file") || quality.startsWith(texts_(text::kSettingsNotStored)));
}

TEST_P(LanguagesTest, MenusHaveLettersOfTheirOwn) {
  if (GetParam().textScale != 1.0) GTEST_SKIP() << "letters have no size";
  const test::WindowHarness harness(localization_);
  QList<QWidget*> menus = {harness.window->menuBar()};
  for (auto* menu : harness.window->menuBar()->findChildren<QMenu*>()) menus.append(menu);
  for (QWidget* menu : menus) {
    if (menu->objectName() == "recentMenu") continue;  // names of files
    QSet<QChar> letters;
    for (const QAction* action : menu->actions()) {
      if (action->isSeparator()) continue;
      const QString text = action->text();
      ASSERT_EQ(text.count('&'), 1) << text.toStdString();
      const QChar letter = text[text.indexOf('&') + 1].toUpper();
      EXPECT_FALSE(letters.contains(letter)) << text.toStdString();
      letters.insert(letter);
      EXPECT_FALSE(action->toolTip().contains('&')) << action->toolTip().toStdString();
    }
  }
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (int language = 0; language < kLanguages; ++language) {
    for (const double scale : {1.0, 4.0}) cases.push_back({language, scale});
  }
  return cases;
}

std::string NameOf(const ::testing::TestParamInfo<Case>& info) {
  const char* const acronyms[kLanguages] = {"en", "de", "fr", "es", "cs", "ja"};
  return std::string(acronyms[info.param.language]) + (info.param.textScale == 1.0 ? "" : "Large");
}

INSTANTIATE_TEST_SUITE_P(All, LanguagesTest, ::testing::ValuesIn(Cases()), NameOf);

TEST(ClippedTextsTest, FindsWhatDoesNotFit) {
  QWidget window;
  auto* tight = new QLabel("a text longer than its place", &window);
  auto* low = new QLabel("one two three four", &window);
  auto* outside = new QPushButton("outside", &window);
  auto* fitting = new QPushButton("ok", &window);
  window.resize(400, 200);
  tight->setGeometry(0, 0, 60, 40);
  low->setWordWrap(true);
  low->setGeometry(0, 40, 60, 20);
  outside->setGeometry(350, 100, 100, 40);
  fitting->setGeometry(0, 100, 100, 40);
  window.show();
  const QStringList found = test::ClippedTexts(window);
  ASSERT_EQ(found.size(), 3) << found.join('\n').toStdString();
  EXPECT_TRUE(found[0].contains("longer") && found[1].contains("three") && found[2].contains("outside"));
}

TEST(MnemonicsTest, TakesLettersThatAreFree) {
  const QStringList texts = {"Open...", "Options...", "Open", "O", "A&dd", "Edit", "d", "Édition"};
  EXPECT_EQ(WithMnemonics(texts, {}),
            QStringList({"&Open...", "O&ptions...", "Op&en", "O", "A&dd", "Ed&it", "d", "Édi&tion"}));
  const QString open = QString::fromUtf8("開く...");
  const QString file = QString::fromUtf8("ファイル");
  EXPECT_EQ(WithMnemonics({file, open, open, "100%"}, {"File", "Open...", "Open", "100% View"}),
            QStringList({file + "(&F)", QString::fromUtf8("開く(&O)..."), QString::fromUtf8("開く(&P)..."),
                         "100%(&V)"}));
}

TEST(ToolkitTextsTest, TheTableServesWhereTheToolkitHasNoTranslation) {
  const settings::Localization german = InLanguage(1);
  TableTranslator translator{Texts(german), nullptr};
  QCoreApplication::installTranslator(&translator);
  QFileDialog dialog;
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  EXPECT_EQ(dialog.labelText(QFileDialog::Accept), "Speichern");
  EXPECT_EQ(dialog.labelText(QFileDialog::Reject), "Abbrechen");
  EXPECT_EQ(dialog.labelText(QFileDialog::FileName), "Dateiname:");
  EXPECT_EQ(dialog.labelText(QFileDialog::FileType), "Dateityp:");
  EXPECT_EQ(dialog.labelText(QFileDialog::LookIn), "Ordner:");
  EXPECT_EQ(translator.translate("QPlatformTheme", "&Yes", nullptr, -1), "Ja");
  EXPECT_EQ(translator.translate("QPlatformTheme", "Reset", nullptr, -1), "");
  QCoreApplication::removeTranslator(&translator);
  const settings::Localization english;
  EXPECT_EQ(TableTranslator(Texts(english), nullptr).translate("QPlatformTheme", "&Yes", nullptr, -1), "");
}

TEST(FailureTextsTest, TellReasonsInTheLanguage) {
  const settings::Localization english;
  const settings::Localization german = InLanguage(1);
  imageio::LoadReport load;
  load.status = imageio::LoadStatus::kUnsupportedKind;
  load.cause = "a palette picture";
  EXPECT_EQ(ReasonOf(Texts(english), load), "a palette picture") << "tells more than the table";
  EXPECT_EQ(ReasonOf(Texts(german), load).toStdWString(), german.Text(301) + L" (a palette picture)");
  imageio::SaveReport save;
  save.status = imageio::SaveStatus::kOutOfMemory;
  EXPECT_EQ(ReasonOf(Texts(english), save).toStdWString(), english.Text(242));
  EXPECT_EQ(ReasonOf(Texts(german), save).toStdWString(), german.Text(242));
}

}  // namespace
}  // namespace mirellon::ui
