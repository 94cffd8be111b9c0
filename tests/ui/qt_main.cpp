// Runs a test program with real widgets on a screen in memory, whatever display there is.
#include <QApplication>

#include <gtest/gtest.h>

#include "ui/application.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" MIRELLON_TEST_SCREEN);
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  mirellon::ui::InitResources();
  return RUN_ALL_TESTS();
}
