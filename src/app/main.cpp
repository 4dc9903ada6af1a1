#include <QApplication>

#include "app/drives.h"
#include "app/frmMain.h"
#include "app/navigation.h"
#include "dialogs/application.h"
#include "dialogs/qt_text.h"
#include "platform/environment.h"

int main(int argc, char** argv) {
  using namespace quiverion;
  KeepFreedMemory();
  QApplication application(argc, argv);
  PrepareApplication(application);
  const QString commandLine = QCoreApplication::arguments().mid(1).join(u' ');
  const std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  const SystemClock clock;
  frmMain window({*files, clock, MountedDrives, AbsolutePath("."), EnvironmentDecimalSeparator(),
                  HelpFileOf(FromQt(commandLine), PathFromQt(QCoreApplication::applicationDirPath()))});
  window.show();
  std::vector<std::string> paths;
  for (const QString& argument : QCoreApplication::arguments().mid(1)) {
    if (argument != u"::IDESTART") paths.push_back(AbsolutePath(PathFromQt(argument)));
  }
  if (!paths.empty()) window.OpenPaths(paths);
  return window.IsQuitting() ? 0 : QApplication::exec();
}
