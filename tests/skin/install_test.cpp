#include "skin/install.h"

#include <QDialog>
#include <QEvent>
#include <QHash>
#include <QProgressBar>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "skin/pixels.h"
#include "skin/schemes.h"
#include "skin/skin_style.h"
#include "skin_specimens.h"

namespace mirellon::skin {
namespace {

QApplication& Application() {
  return *qobject_cast<QApplication*>(QCoreApplication::instance());
}

// Counts who is painted.
class Paints : public QObject {
 public:
  [[nodiscard]] int of(const QWidget* widget) const { return painted_.value(widget); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++painted_[watched];
    return false;
  }

 private:
  QHash<const QObject*, int> painted_;
};

// A window with one control of each class.
struct Window {
  Window() {
    auto* column = new QVBoxLayout(&dialog);
    for (const specimens::Specimen& specimen : specimens::Specimens()) {
      if (specimen.name == "menu") continue;  // a window of its own
      controls.push_back(specimen.make(QStringLiteral("Text")).release());
      names.push_back(specimen.name);
      column->addWidget(controls.back());  // the dialog's now
    }
    dialog.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&dialog));
  }

  QDialog dialog;
  std::vector<QWidget*> controls;
  std::vector<std::string> names;
};

class InstallTest : public ::testing::Test {
 protected:
  void TearDown() override { RemoveSkin(Application()); }
};

TEST_F(InstallTest, RemovingBringsBackWhatWasThere) {
  const QString style = QApplication::style()->name();
  const QPalette palette = QApplication::palette();
  const QPalette toolTips = QToolTip::palette();
  for (int round = 0; round < 2; ++round) {
    InstallSkin(Application(), kSchemeContrast);
    EXPECT_NE(dynamic_cast<SkinStyle*>(QApplication::style()), nullptr);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), SchemeOf(kSchemeContrast).window);
    EXPECT_EQ(QToolTip::palette().color(QPalette::ToolTipBase), SchemeOf(kSchemeContrast).raised);
    InstallSkin(Application(), kSchemeLight);  // a second time: the scheme only
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), SchemeOf(kSchemeLight).window);
    RemoveSkin(Application());
    EXPECT_EQ(dynamic_cast<SkinStyle*>(QApplication::style()), nullptr);
    EXPECT_EQ(QApplication::style()->name(), style);
    EXPECT_EQ(QApplication::palette(), palette);
    EXPECT_EQ(QToolTip::palette(), toolTips);
  }
}

TEST_F(InstallTest, WithoutTheSkinNothingHappens) {
  const QPalette palette = QApplication::palette();
  SetColourScheme(Application(), kSchemeLight);
  RemoveSkin(Application());
  EXPECT_EQ(QApplication::palette(), palette);
}

TEST_F(InstallTest, AnotherSchemeRepaintsEveryControlOfEveryWindow) {
  InstallSkin(Application(), kSchemeDark);
  const Window first;
  const Window second;
  QCoreApplication::processEvents();
  for (const auto& [from, to] : {std::pair{kSchemeDark, kSchemeLight},
                                 {kSchemeLight, kSchemeContrast},
                                 {kSchemeContrast, kSchemeDark}}) {
    for (const Window* window : {&first, &second}) {
      std::vector<QImage> before;
      before.reserve(window->controls.size());
      for (QWidget* control : window->controls) before.push_back(specimens::Picture(*control, 1));
      Paints paints;
      for (QWidget* control : window->controls) {
        control->installEventFilter(&paints);
        for (QWidget* inner : control->findChildren<QWidget*>()) inner->installEventFilter(&paints);
      }
      SetColourScheme(Application(), to);
      QCoreApplication::processEvents();
      for (std::size_t i = 0; i < window->controls.size(); ++i) {
        EXPECT_GT(paints.of(window->controls[i]), 0) << window->names[i];
        EXPECT_GT(test::DifferentPixels(before[i], specimens::Picture(*window->controls[i], 1)), 100)
            << window->names[i] << " from " << from << " to " << to;
      }
      SetColourScheme(Application(), from);
      QCoreApplication::processEvents();
    }
    SetColourScheme(Application(), to);
  }
}

TEST_F(InstallTest, ABusyBarMovesByItself) {
  InstallSkin(Application(), kSchemeDark);
  QProgressBar bar;
  bar.setRange(0, 0);
  bar.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
  Paints paints;
  bar.installEventFilter(&paints);
  const QImage before = specimens::Picture(bar, 1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return paints.of(&bar) >= 3; }, 30000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return specimens::Picture(bar, 1) != before; }, 30000));
}

}  // namespace
}  // namespace mirellon::skin
