// The programs: the desktop tool, and its edition for the service bench.
#include <QApplication>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"

int main(int, char** arguments) {
  // There is no command line.
  int argumentCount = 1;
  QApplication application(argumentCount, arguments);
  gainsmith::ApplyLook(application);
  gainsmith::DesktopWorld world(QCoreApplication::applicationDirPath().toStdString());
  gainsmith::Tool tool(world, gainsmith::Edition::GAINSMITH_EDITION);
  tool.Start();
  const int result = world.Ended() ? 0 : QApplication::exec();
  // Takes the windows from the screen before their records go.
  world.EndProgram();
  return result;
}
