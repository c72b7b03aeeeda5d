// Runs the desktop tests in one QApplication.
#include <gtest/gtest.h>

#include <QApplication>

#include "desktop/look.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  gainsmith::ApplyLook(application);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
