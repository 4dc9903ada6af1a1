#pragma once

#include <QFileDialog>
#include <QPrinter>

/// What the dialogs and fonts of the system want, each system in its own way.
namespace quiverion {

/// Gives the dialog the name filters ("Textdatei (*.txt)") for a file that is saved. The dialog is to leave the name as it
/// was typed: extensions are the program's matter.
void SetSaveFilters(QFileDialog& dialog, const QStringList& filters);

/// Whether the print dialog has anything to offer for a new printer. On Windows that takes a printer, elsewhere there is
/// always a file to print to.
bool CanAskHowToPrint(const QPrinter& printer);

/// Names the fonts to be taken where the one of the system is not installed.
void ChooseFonts();

}  // namespace quiverion
