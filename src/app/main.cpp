#include <QApplication>

#include "app/drives.h"
#include "app/frmMain.h"
#include "app/navigation.h"
#include "dialogs/application.h"
#include "dialogs/qt_text.h"
#include "platform/environment.h"

int main(int argc, char** argv) {
  using namespace quiverion;
  PrepareProcess();
  QApplication application(argc, argv);
  PrepareApplication(application);
  std::string commandLine;
  std::vector<std::string> paths;
  for (const std::string& argument : CommandLineArguments(argc, argv)) {
    commandLine += (commandLine.empty() ? "" : " ") + argument;
    if (argument != "::IDESTART") paths.push_back(AbsolutePath(argument));
  }
  const std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  const SystemClock clock;
  frmMain window({*files, clock, MountedDrives, paths.empty() ? AbsolutePath(".") : ParentDirectory(paths.front()),
                  EnvironmentDecimalSeparator(),
                  HelpFileOf(commandLine, PathFromQt(QCoreApplication::applicationDirPath()))});
  window.show();
  if (!paths.empty()) window.OpenPaths(paths);
  return window.IsQuitting() ? 0 : QApplication::exec();
}
