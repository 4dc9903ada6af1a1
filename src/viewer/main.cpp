#include <QApplication>
#include <QHashFunctions>
#include <algorithm>

#include "dialogs/application.h"
#include "dialogs/help/help.h"
#include "dialogs/widgets/native.h"
#include "dialogs/widgets/qt_text.h"
#include "platform/files/paths.h"
#include "platform/process/clock.h"
#include "platform/process/environment.h"
#include "view/frmView.h"
#include "view/window_messages.h"
#include "viewer/arguments.h"

namespace {

// Pictures need fonts, but no display. The fonts of a PDF are in the order of a hash, which must not be another one
// each time. What Qt notices about the environment is no message of this program.
void PrepareDrawing() {
  quiverion::DrawWithoutDisplay();
  QHashSeed::setDeterministicGlobalSeed();
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quiverion;
  PrepareProcess();
  const std::vector<std::string> words = CommandLineArguments(argc, argv);
  if (std::ranges::any_of(words, [](const std::string& word) { return word.starts_with('-'); })) UseCallersConsole();
  const ViewerArguments arguments = ReadArguments(words);
  if (arguments.exitCode) return *arguments.exitCode;
  if (arguments.picture) PrepareDrawing();
  int count = 1;  // not even Qt's options
  QApplication application(count, argv);
  if (arguments.picture) return WritePictures(*arguments.picture);
  PrepareApplication(application);
  QGuiApplication::setDesktopFileName(QStringLiteral("org.quiverion.QuiverionView"));
  QApplication::setApplicationName(QStringLiteral("QuiverionView"));
  QApplication::setQuitOnLastWindowClosed(true);
  const std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  const SystemClock clock;
  std::function<void()> showHelp;
  frmView window({*files, clock, [&showHelp] { showHelp(); }});
  WindowMessages messages(window);
  Help help(
      WithSeparator(PathFromQt(QCoreApplication::applicationDirPath())) + "Quiverion.hlp",
      [] { return std::string("frmView"); }, window, messages);
  showHelp = [&help, &window] { help.ShowFor(window); };
  window.show();
  std::vector<std::string> paths;
  for (const std::string& file : arguments.files) paths.push_back(AbsolutePath(file));
  window.OpenPaths(paths);
  return QApplication::exec();
}
