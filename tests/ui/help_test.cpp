// The help window, and how one gets there.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <algorithm>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "support/test_pictures.h"
#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/batch_options_dialog.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/batch_report_dialog.h"
#include "ui/dialogs/help_window.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/help_topics.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using test::ModalUser;
using test::WaitFor;
using test::WindowHarness;

class HelpWindowTest : public ::testing::Test {
 protected:
  void Show(const std::string& language = "en") {
    const std::filesystem::path file = base::ResourceFile("mirellon_" + language + ".html");
    const std::optional<HelpPage> page = ReadHelpPage(file, localization);
    ASSERT_TRUE(page) << file;
    window.ShowPage(file, *page);
    window.resize(940, 760);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  }
  template <typename Widget>
  Widget* Find(const char* name) {
    return window.findChild<Widget*>(QLatin1String(name));
  }

  test::TemporaryFolder folder;
  settings::Localization localization;
  Texts texts{localization};
  HelpWindow window{texts, folder / "settings.txt", nullptr};
};

class HelpLanguageTest : public HelpWindowTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(HelpLanguageTest, ShowsEveryPictureAndReachesEverySection) {
  Show(GetParam());
  const HelpView& view = window.view();
  EXPECT_TRUE(view.missingPictures().isEmpty()) << view.missingPictures().join(' ').toStdString();
  EXPECT_FALSE(window.windowTitle().isEmpty());
  EXPECT_FALSE(view.toPlainText().contains("{{"));
  EXPECT_TRUE(WaitFor([&] { return !view.horizontalScrollBar()->isVisible(); })) << "pictures fit the window";
  const std::optional<HelpPage> page =
      ReadHelpPage(base::ResourceFile("mirellon_" + std::string(GetParam()) + ".html"), localization);
  for (std::size_t i = 0; i < page->sections.size(); ++i) {
    window.GoTo(QString::fromStdString(page->sections[i].anchor));
    EXPECT_EQ(view.currentSection(), static_cast<int>(i)) << page->sections[i].anchor;
    EXPECT_EQ(Find<QTreeWidget>("helpContents")->currentItem()->text(0).toStdString(),
              page->sections[i].title);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, HelpLanguageTest, ::testing::Values("en", "de", "fr", "es", "cs", "ja"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_F(HelpWindowTest, GoesBackAndForward) {
  Show();
  window.GoTo("strength");
  auto* contents = Find<QTreeWidget>("helpContents");
  contents->setCurrentItem(contents->findItems("Saving", Qt::MatchExactly).at(0));
  EXPECT_EQ(window.currentAnchor(), "saving");
  QTest::keyClick(&window.view(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(window.currentAnchor(), "strength");
  QTest::keyClick(&window.view(), Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(window.currentAnchor(), "saving");
  window.view().verticalScrollBar()->setValue(0);
  EXPECT_EQ(window.currentAnchor(), "top") << "the contents follow what is read";
  window.GoTo("saving");
  EXPECT_EQ(window.currentAnchor(), "saving") << "again, although it was the last place gone to";
  QTest::keyClick(&window.view(), Qt::Key_Home, Qt::AltModifier);
  EXPECT_EQ(window.currentAnchor(), "top");
  EXPECT_TRUE(contents->hasFocus());
}

TEST_F(HelpWindowTest, FindsTextRoundTheEnd) {
  Show();
  QTest::keyClick(&window.view(), Qt::Key_F, Qt::ControlModifier);
  auto* find = Find<QLineEdit>("helpFind");
  ASSERT_TRUE(find->hasFocus());
  auto* notFound = Find<QLabel>("helpNotFound");
  QTest::keyClicks(find, "watercolour");
  const int place = window.view().textCursor().selectionStart();
  EXPECT_EQ(window.view().textCursor().selectedText(), "watercolour");
  EXPECT_EQ(window.currentAnchor(), "strength");
  QTest::keyClick(find, Qt::Key_F3);
  EXPECT_EQ(window.view().textCursor().selectionStart(), place) << "the only one, met again from the start";
  QTest::keyClick(find, Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(window.view().textCursor().selectionStart(), place);
  EXPECT_TRUE(notFound->text().isEmpty());
  QTest::keyClicks(find, "zz");
  EXPECT_EQ(notFound->text(), "Not found");
  find->clear();
  EXPECT_TRUE(notFound->text().isEmpty());
}

TEST_F(HelpWindowTest, ChangesItsSizeAndColoursInPlace) {
  Show();
  window.GoTo("chroma");
  HelpView& view = window.view();
  const double before = view.document()->size().height();
  QTest::keyClick(&view, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(view.zoom(), 110);
  EXPECT_GT(view.document()->size().height(), before);
  EXPECT_EQ(window.currentAnchor(), "chroma");
  for (int i = 0; i < 40; ++i) QTest::keyClick(&view, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_EQ(view.zoom(), 50);
  QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(view.zoom(), 100);
  QPalette dark = window.palette();
  dark.setColor(QPalette::Text, Qt::cyan);
  window.setPalette(dark);
  QTextCursor heading(view.document());
  EXPECT_EQ(heading.charFormat().foreground().color(), QColor(Qt::cyan));
  EXPECT_EQ(window.currentAnchor(), "chroma");
  window.resize(640, 400);
  EXPECT_TRUE(WaitFor([&] { return view.document()->size().width() <= view.viewport()->width(); }))
      << "pictures shrink";
  EXPECT_EQ(window.currentAnchor().toStdString(), "chroma");
}

TEST_F(HelpWindowTest, ClosesByEscapeAndRemembersItsPlace) {
  Show();
  window.resize(800, 500);
  QTest::keyClick(Find<QLineEdit>("helpFind"), Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
  const HelpWindow again(texts, folder / "settings.txt", nullptr);
  EXPECT_EQ(again.size(), QSize(800, 500));
}

TEST_F(HelpWindowTest, CanBeUsedByKeysAndByEar) {
  Show();
  for (const char* name : {"helpContents", "helpView", "helpFind"}) {
    const auto* widget = Find<QWidget>(name);
    EXPECT_FALSE(widget->accessibleName().isEmpty()) << name;
    EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << name;
  }
  for (const char* name : {"helpBack", "helpForward", "helpContentsAction", "helpLarger", "helpSmaller",
                           "helpFindNext", "helpFindPrevious"}) {
    const auto* action = Find<QAction>(name);
    EXPECT_FALSE(action->text().isEmpty()) << name;
    EXPECT_FALSE(action->shortcut().isEmpty()) << name;
  }
}

// ---- Getting there ----

class HelpDeskTest : public ::testing::Test {
 protected:
  HelpDeskTest() { harness.context.resourceFolders = base::ResourceFolders(); }

  HelpWindow* Opened() const {
    for (HelpWindow* window : harness.window->findChildren<HelpWindow*>()) {
      if (window->isVisible()) return window;
    }
    return nullptr;
  }
  // The section that F1 on the widget opens.
  std::string SectionOf(QWidget* widget) {
    QTest::keyClick(widget, Qt::Key_F1);
    HelpWindow* window = Opened();
    std::string anchor = window == nullptr ? "" : window->currentAnchor().toStdString();
    if (window != nullptr) window->close();
    return anchor;
  }

  WindowHarness harness;
};

TEST_F(HelpDeskTest, OpensTheSectionOnWhatHasTheFocus) {
  EXPECT_EQ(SectionOf(harness.window.get()), "top");
  EXPECT_EQ(SectionOf(&harness.window->view()), "viewing");
  EXPECT_EQ(SectionOf(harness.Find<QWidget>("slider.m_dDynamics")), "dynamics");
  EXPECT_EQ(SectionOf(harness.Find<QWidget>("value.m_dSharp3")), "rough");
  EXPECT_EQ(SectionOf(harness.Find<QWidget>("qualityList")), "quality");
  EXPECT_EQ(SectionOf(harness.Find<QWidget>("setDefault")), "parameters");
  harness.Do(Command::kHelp);
  ASSERT_NE(Opened(), nullptr);
  EXPECT_EQ(Opened()->currentAnchor(), "top");
  EXPECT_EQ(harness.window->findChildren<HelpWindow*>().size(), 1) << "one window for all of it";
}

TEST_F(HelpDeskTest, HelpsInModalDialogsAndAfterThem) {
  settings::OptionsState state(
      harness.settings, harness.localization, [] { return true; }, 2);
  OptionsDialog dialog(state, harness.localization, Texts(harness.localization), {}, harness.window.get());
  dialog.open();
  QTest::keyClick(dialog.findChild<QWidget*>("control1074"), Qt::Key_F1);
  auto* window = dialog.findChild<HelpWindow*>();
  ASSERT_NE(window, nullptr) << "what belongs to the dialog can be used beside it";
  EXPECT_EQ(window->currentAnchor(), "options");
  QTest::keyClick(dialog.findChild<QWidget*>("control1076"), Qt::Key_F1);
  EXPECT_EQ(window->currentAnchor(), "card");
  dialog.reject();
  ASSERT_TRUE(WaitFor([&] { return Opened() != nullptr && Opened()->parent() == harness.window.get(); }));
  EXPECT_EQ(Opened()->currentAnchor(), "card");
}

TEST_F(HelpDeskTest, RestsWhileTheWindowIsBusy) {
  harness.Open(harness.WritePhotograph("a.png", test::PhotoLikePicture(1200, 900, 3, 8, 11)));
  harness.Find<QComboBox>("qualityList")->setCurrentIndex(2);
  harness.Do(Command::kDenoise);
  ASSERT_FALSE(harness.Action(Command::kHelp)->isEnabled());
  EXPECT_EQ(SectionOf(&harness.window->view()), "");
  harness.WaitUntilIdle();
  EXPECT_EQ(SectionOf(&harness.window->view()), "viewing");
}

TEST_F(HelpDeskTest, SaysOnceThatThereIsNone) {
  harness.context.resourceFolders = {harness.folder / "nothing"};
  harness.Do(Command::kHelp);
  ASSERT_EQ(harness.dialogs.messages.size(), 1U);
  EXPECT_NE(harness.dialogs.messages[0].find((harness.folder / "nothing").wstring()), std::wstring::npos);
  harness.context.resourceFolders = base::ResourceFolders();
  harness.Do(Command::kHelp);
  EXPECT_EQ(Opened(), nullptr) << "not for the rest of the run";
  EXPECT_EQ(harness.dialogs.messages.size(), 1U);
}

TEST_F(HelpDeskTest, QuotesTheLanguageInUse) {
  test::WriteBytes(harness.folder / "loc.ini",
                   "[General]\nLanguages No=2\nLanguage Current=1\n[0]\nAcronym=en\n[1]\nAcronym=sv\n"
                   "string116=Styrka:\n");
  const settings::LanguagePaths paths{harness.folder / "loc.ini", harness.folder / "own.ini"};
  harness.localization.LoadTexts(paths);
  harness.localization.LoadLanguages();
  harness.Do(Command::kHelp);
  ASSERT_NE(Opened(), nullptr) << "no Swedish page: the first language's";
  EXPECT_TRUE(Opened()->view().toPlainText().contains("Styrka"));
}

TEST_F(HelpDeskTest, HasAnAnchorAndAWidgetForEveryTopic) {
  const Texts texts(harness.localization);
  settings::OptionsState state(
      harness.settings, harness.localization, [] { return true; }, 2);
  const OptionsDialog options(state, harness.localization, texts, {}, nullptr);
  const AddingDialog adding({}, texts, nullptr);
  const SaveDialog save({L"Save", {}, 8, 85}, texts, nullptr);
  const BatchOptionsDialog batchOptions(85, texts, nullptr);
  const BatchProgressDialog batchProgress(texts, nullptr);
  const BatchReportDialog batchReport({}, {}, texts, nullptr);
  QStringList names;
  {
    ModalUser user;
    user.Expect("folderDialog", [&names](QWidget* dialog) {
      EXPECT_EQ(TopicOf(dialog->focusWidget()), "batch") << "not what is said of other file dialogs";
      names.append(dialog->objectName());
      dialog->close();
    });
    (void)harness.realDialogs.AskFolder(L"Folder", harness.folder.path());
  }
  const std::vector<const QWidget*> windows{harness.window.get(), &options,       &adding,     &save,
                                            &batchOptions,        &batchProgress, &batchReport};
  for (const QWidget* window : windows) {
    names.append(window->objectName());
    for (const QWidget* widget : window->findChildren<QWidget*>())
      names.append(widget->objectName().section('.', -1));
  }
  const std::optional<HelpPage> page =
      ReadHelpPage(base::ResourceFile("mirellon_en.html"), harness.localization);
  ASSERT_TRUE(page);
  for (const HelpTopic& topic : HelpTopics()) {
    EXPECT_TRUE(names.contains(topic.name)) << topic.name;
    EXPECT_TRUE(std::any_of(page->sections.begin(), page->sections.end(), [&](const HelpSection& section) {
      return section.anchor == topic.anchor;
    })) << topic.anchor;
  }
}

}  // namespace
}  // namespace mirellon::ui
