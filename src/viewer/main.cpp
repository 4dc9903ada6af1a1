#include <QApplication>
#include <QHashFunctions>

#include "dialogs/application.h"
#include "messages/failure.h"
#include "platform/process/environment.h"
#include "viewer/arguments.h"

namespace {

// Pictures need fonts, but no display. The fonts of a PDF are in the order of a hash, which must not be another one each
// time. What Qt notices about the environment is no message of this program.
void PrepareDrawing() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QHashSeed::setDeterministicGlobalSeed();
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quiverion;
  PrepareProcess();
  const ViewerArguments arguments = ReadArguments(CommandLineArguments(argc, argv));
  if (arguments.exitCode) return *arguments.exitCode;
  if (arguments.picture) PrepareDrawing();
  int count = 1;  // not even Qt's options
  QApplication application(count, argv);
  if (arguments.picture) return WritePictures(*arguments.picture);
  PrepareApplication(application);
  return 0;
}
