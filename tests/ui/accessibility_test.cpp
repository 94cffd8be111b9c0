// What a screen reader is told, and what the keyboard reaches.
#include <QAbstractButton>
#include <QAccessible>
#include <QMenu>
#include <QMessageBox>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

#include "support/test_pictures.h"
#include "ui/dialogs/about_dialog.h"
#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/batch_options_dialog.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/parameter_panel.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

settings::Localization InLanguage(int language) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "own.ini", "[General]\nLanguage Current=" + std::to_string(language) + "\n");
  return settings::LoadLocalization(
      {std::filesystem::path(MIRELLON_RESOURCES) / "Mirellon_loc.ini", folder / "own.ini"});
}

std::string Described(const QWidget& widget) {
  return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString();
}

QString Told(QWidget& widget, QAccessible::Text kind) {
  QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&widget);
  return told == nullptr ? QString() : told->text(kind);
}

// What the keyboard should reach.
QSet<QWidget*> Reachable(QWidget& window) {
  QSet<QWidget*> widgets;
  for (auto* widget : window.findChildren<QWidget*>()) {
    const bool usable = widget->isVisible() && widget->isEnabled() && widget->window() == &window;
    if (usable && (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr) {
      // The field within a list is the list's.
      const bool part = qobject_cast<QComboBox*>(widget->parentWidget()) != nullptr;
      widgets.insert(part ? widget->parentWidget() : widget);
    }
  }
  return widgets;
}

// What it reaches, in turn.
QList<QWidget*> TabStops(QWidget& window) {
  QList<QWidget*> stops;
  for (int i = 0; i < 200; ++i) {
    QWidget* focus = window.focusWidget();
    if (focus == nullptr) return stops;
    QWidget* stop =
        qobject_cast<QComboBox*>(focus->parentWidget()) != nullptr ? focus->parentWidget() : focus;
    if (stops.contains(stop)) return stops;
    stops.append(stop);
    QTest::keyClick(focus, Qt::Key_Tab);
  }
  return stops;
}

void ExpectNames(QWidget& window) {
  for (QWidget* widget : Reachable(window)) {
    const QString name = Told(*widget, QAccessible::Name);
    EXPECT_FALSE(name.trimmed().isEmpty()) << Described(*widget);
    const QAccessible::Role role = QAccessible::queryAccessibleInterface(widget)->role();
    const bool items =
        role == QAccessible::List || role == QAccessible::Tree;  // whose values are their items'
    EXPECT_TRUE(items || name != Told(*widget, QAccessible::Value)) << Described(*widget);
    EXPECT_TRUE(role != QAccessible::NoRole && role != QAccessible::Client) << Described(*widget) << role;
  }
  QSet<QString> names;
  for (auto* button : window.findChildren<QAbstractButton*>()) {
    if (!button->isVisible() || button->window() != &window) continue;
    const QString name = Told(*button, QAccessible::Name);
    EXPECT_FALSE(name.isEmpty() || names.contains(name)) << Described(*button) << " " << name.toStdString();
    names.insert(name);
  }
}

// As a page is read: further down, or to the right in the same line.
void ExpectReadingOrder(const QList<QWidget*>& stops) {
  for (qsizetype i = 1; i < stops.size(); ++i) {
    const QRect before(stops[i - 1]->mapTo(stops[i]->window(), QPoint()), stops[i - 1]->size());
    const QRect after(stops[i]->mapTo(stops[i]->window(), QPoint()), stops[i]->size());
    const bool below = after.top() >= before.bottom();
    const bool beside = after.left() >= before.right() && after.bottom() > before.top();
    EXPECT_TRUE(below || beside) << Described(*stops[i - 1]) << " before " << Described(*stops[i]);
  }
}

class AccessibilityTest : public ::testing::TestWithParam<int> {
 protected:
  void ExpectReached(QWidget& window) {
    const QList<QWidget*> stops = TabStops(window);
    EXPECT_EQ(QSet<QWidget*>(stops.begin(), stops.end()), Reachable(window)) << Described(window);
  }
  void ExpectUsable(QWidget& dialog) {
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    ExpectNames(dialog);
    const QList<QWidget*> reachable = TabStops(dialog);
    ASSERT_FALSE(reachable.isEmpty()) << Described(dialog);
    ExpectReached(dialog);
    // From the one that is first in the dialog on.
    QList<QWidget*> stops = reachable;
    const auto first = std::min_element(stops.begin(), stops.end(), [&](const QWidget* a, const QWidget* b) {
      return a->mapTo(&dialog, QPoint()).y() < b->mapTo(&dialog, QPoint()).y();
    });
    std::rotate(stops.begin(), first, stops.end());
    ExpectReadingOrder(stops);
  }

  settings::Localization localization_ = InLanguage(GetParam());
  Texts texts_{localization_};
};

TEST_P(AccessibilityTest, TheWindowTellsAndIsReached) {
  test::WindowHarness harness(localization_);
  MainWindow& window = *harness.window;
  EXPECT_TRUE(harness.Find<QWidget>("startOpen")->hasFocus()) << "nothing else is to be done";
  ExpectNames(window);
  ExpectReached(window);
  const picture::PicBuf photograph = test::PhotoLikePicture(320, 240, 3, 8, 1);
  harness.Open(harness.WritePhotograph("photograph.png", photograph.record()));
  EXPECT_TRUE(window.view().hasFocus());
  ExpectNames(window);
  ExpectReached(window);
  QList<QWidget*> inPanel;
  for (QWidget* stop : TabStops(window)) {
    if (window.panel().isAncestorOf(stop)) inPanel.append(stop);
  }
  EXPECT_GT(inPanel.size(), 15);
  ExpectReadingOrder(inPanel);
  for (auto* bar : window.findChildren<QProgressBar*>())
    EXPECT_FALSE(Told(*bar, QAccessible::Name).isEmpty());
}

TEST_P(AccessibilityTest, EveryCommandHasAKeyOrALetterInAMenu) {
  test::WindowHarness harness(localization_);
  for (const Command command : AllCommands()) {
    const QAction& action = *harness.Action(command);
    bool inMenu = false;
    for (const QObject* object : action.associatedObjects()) {
      inMenu = inMenu || qobject_cast<const QMenu*>(object) != nullptr;
    }
    EXPECT_TRUE(!action.shortcuts().isEmpty() || (inMenu && action.text().contains('&')))
        << action.text().toStdString();
  }
}

TEST_P(AccessibilityTest, TheDialogsTellAndAreReached) {
  const test::TemporaryFolder folder;
  settings::AppSettings settings(folder.path());
  settings::OptionsState state(
      settings, localization_, [] { return true; }, 2);
  localization_.LoadLanguages();
  OptionsDialog options(state, localization_, texts_, texts_(267), nullptr);
  ExpectUsable(options);
  ProfileNameQuestion question;
  question.exif.iso = L"800";
  AddingDialog adding(question, texts_, nullptr);
  ExpectUsable(adding);
  BatchOptionsDialog batchOptions(85, texts_, nullptr);
  ExpectUsable(batchOptions);
  BatchProgressDialog batchProgress(texts_, nullptr);
  ExpectUsable(batchProgress);
  AboutDialog about(texts_, texts_(265).arg("Renderer"), nullptr);
  ExpectUsable(about);
  // Most of it is the toolkit's, and so is its order.
  SaveDialog save({localization_.Text(56), {folder / "a-denoised", 4, ".jpg"}, 8, 85}, texts_, nullptr);
  save.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&save));
  ExpectNames(save);
}

std::string NameOf(const ::testing::TestParamInfo<int>& info) {
  return info.param == 0 ? "English" : "Japanese";
}

INSTANTIATE_TEST_SUITE_P(Languages, AccessibilityTest, ::testing::Values(0, 5), NameOf);

}  // namespace
}  // namespace mirellon::ui
