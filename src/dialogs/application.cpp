#include "dialogs/application.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "dialogs/icons.h"

namespace quiverion {

void PrepareApplication(QApplication& application) {
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  auto* const german = new QTranslator(&application);
  if (german->load(QStringLiteral("qtbase_de"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(german);
  }
  UseIcons();
  QApplication::setWindowIcon(QIcon(":/icons/program.svg"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.quiverion.QuiverionSeries"));
  QApplication::setApplicationName(QStringLiteral("QuiverionSeries"));
  // The main window is hidden during a run: its end is not the program's.
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace quiverion
