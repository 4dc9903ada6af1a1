#pragma once

#include <QFileDialog>
#include <QPrinter>

/// The parts of dialogs and fonts that differ between the systems.
namespace quiverion {

/// Gives the dialog the name filters ("Textdatei (*.txt)") for saving a file. The dialog must leave the name as typed,
/// because the program adds extensions itself.
void SetSaveFilters(QFileDialog& dialog, const QStringList& filters);

/// Whether the print dialog can be used. On Windows it needs a printer; elsewhere it can always print to a file.
bool CanAskHowToPrint(const QPrinter& printer);

/// Before the application is created: it needs no display, only fonts. On Windows there always is one.
void DrawWithoutDisplay();

/// Sets the fonts to use if that of the system is not installed.
void ChooseFonts();

}  // namespace quiverion
