#include "dialogs/widgets/native.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>

namespace quiverion {

// If Qt finds "*.txt" in a filter, the system appends "txt" even to a name with another extension. "Textdatei (.txt)
// (*txt)" avoids that, and is shown without the last part.
void SetSaveFilters(QFileDialog& dialog, const QStringList& filters) {
  QStringList quiet;
  for (const QString& filter : filters) {
    const QString patterns = filter.section(u'(', -1);
    quiet.append(QString(filter).replace("*.", ".") + " (" + QString(patterns).replace("*.", "*"));
  }
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters(quiet);
}

bool CanAskHowToPrint(const QPrinter& printer) {
  return printer.outputFormat() == QPrinter::NativeFormat;  // without a printer it falls back to files
}

// wine names a font that it lacks. Qt would take any font, and without smoothing most are so coarse at small sizes that
// an "I" is invisible.
void ChooseFonts() {
  QFont font = QApplication::font();
  QFont::insertSubstitutions(font.family(), {"Segoe UI", "Tahoma", "Arial", "Liberation Sans", "DejaVu Sans"});
  if (QFontInfo(font).family().compare(font.family(), Qt::CaseInsensitive) == 0) return;
  font.setStyleStrategy(QFont::PreferAntialias);
  QApplication::setFont(font);
  // These widgets have a font of their own.
  for (const char* const kind : {"QMenu", "QMenuBar", "QMessageBox", "QTabBar", "QTipLabel", "QHeaderView"}) {
    QFont own = QApplication::font(kind);
    own.setStyleStrategy(QFont::PreferAntialias);
    QApplication::setFont(own, kind);
  }
}

// Without a display Qt would have no fonts here.
void DrawWithoutDisplay() {}

}  // namespace quiverion
