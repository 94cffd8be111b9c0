// Wherever the Tab key leads, one sees where it has led.
#include <QApplication>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include "skin/install.h"
#include "skin/schemes.h"
#include "support/test_pictures.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

QImage Look(QWidget& window) {
  return window.grab().toImage();
}

int DifferentPixels(const QImage& a, const QImage& b) {
  int different = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) different += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
  }
  return different;
}

class FocusTest : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override { skin::InstallSkin(Application(), GetParam()); }
  void TearDown() override { skin::RemoveSkin(Application()); }

  static QApplication& Application() { return *qobject_cast<QApplication*>(QCoreApplication::instance()); }
};

INSTANTIATE_TEST_SUITE_P(AllSchemes, FocusTest,
                         ::testing::Values(skin::kSchemeLight, skin::kSchemeDark, skin::kSchemeContrast));

TEST_P(FocusTest, IsVisibleOnEveryStopOfTheTabKey) {
  test::WindowHarness harness;
  MainWindow& window = *harness.window;
  harness.Open(harness.WritePhotograph("photo.png", test::PhotoLikePicture(64, 48, 3, 8, 1)));
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  int stops = 0;
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  QWidget* first = QApplication::focusWidget();
  do {
    QWidget* stop = QApplication::focusWidget();
    ASSERT_NE(stop, nullptr);
    const QImage with = Look(window);
    stop->clearFocus();
    const QImage without = Look(window);
    EXPECT_GT(DifferentPixels(with, without), 24)
        << stop->objectName().toStdString() << " " << stop->metaObject()->className();
    stop->setFocus(Qt::TabFocusReason);
    QTest::keyClick(stop, Qt::Key_Tab);
    ++stops;
  } while (QApplication::focusWidget() != first && stops < 100);
  EXPECT_GT(stops, 10);
  EXPECT_LT(stops, 100);
}

}  // namespace
}  // namespace mirellon::ui
