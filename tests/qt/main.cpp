#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

#include "testing/pilot/pilot_system.h"

int main(int argc, char* argv[]) {
  orvex::choose_screen();
  // Whatever is written among the user's settings is seen there, and no user's own are in the way.
  const QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  ::testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
