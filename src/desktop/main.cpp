// The programs: the desktop tool, and its edition for the service bench.
#include <QApplication>

#include "app/tool.h"
#include "desktop/desktop_world.h"
#include "desktop/look.h"
#include "host/sql_row_store.h"

int main(int, char** arguments) {
  // There is no command line.
  int argumentCount = 1;
  QApplication application(argumentCount, arguments);
  gainsmith::ApplyLook(application);
  constexpr auto Edition = gainsmith::Edition::GAINSMITH_EDITION;
  // Only the bench has the grid: the start of the other edition does without the store's library.
  gainsmith::DesktopWorld::RowStoreOpener openRows = nullptr;
  if constexpr (Edition == gainsmith::Edition::ServiceBench) openRows = gainsmith::OpenRowStore;
  gainsmith::DesktopWorld world(QCoreApplication::applicationDirPath().toStdString(), openRows);
  gainsmith::Tool tool(world, Edition);
  tool.Start();
  const int result = world.Ended() ? 0 : QApplication::exec();
  // Takes the windows from the screen before their records go.
  world.EndProgram();
  return result;
}
