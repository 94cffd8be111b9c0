// Runs a test program of the skin with no screen, whatever display there is.
#include <QApplication>

#include <gtest/gtest.h>

// The macro wants to stand outside of every namespace.
static void InitLinkedResources() {
  Q_INIT_RESOURCE(icons);
  Q_INIT_RESOURCE(skin);
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  InitLinkedResources();
  return RUN_ALL_TESTS();
}
