// The tests of windows: one application, without a display.
#include <gtest/gtest.h>

#include <QApplication>

#include "dialogs/application.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  quiverion::PrepareApplication(application);
  return RUN_ALL_TESTS();
}
