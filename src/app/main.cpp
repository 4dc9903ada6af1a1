#include <QApplication>
#include <algorithm>

#include "app/drives.h"
#include "app/frmMain.h"
#include "app/navigation.h"
#include "dialogs/application.h"
#include "dialogs/widgets/qt_text.h"
#include "platform/process/environment.h"

int main(int argc, char** argv) {
  using namespace quiverion;
  PrepareProcess();
  int count = std::min(argc, 1);  // not even Qt's options
  QApplication application(count, argv);
  PrepareApplication(application);
  std::string commandLine;
  for (const std::string& argument : CommandLineArguments(argc, argv)) {
    commandLine += (commandLine.empty() ? "" : " ") + argument;
  }
  const std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  const SystemClock clock;
  frmMain window({*files, clock, MountedDrives, AbsolutePath("."), EnvironmentDecimalSeparator(),
                  HelpFileOf(commandLine, PathFromQt(QCoreApplication::applicationDirPath()))});
  window.show();
  return QApplication::exec();
}
