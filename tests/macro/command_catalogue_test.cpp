#include "macro/command_catalogue.h"

#include <gtest/gtest.h>

#include <string>

namespace quiverion::test {
namespace {

struct Entry {
  std::int32_t eventId;
  const char* constantName;
  std::int32_t parent;
  const char* shortText;
  const char* longText;
};

constexpr const char* kSame = nullptr;  // the long text is the short one

// clang-format off
constexpr Entry kTree[] = {
    {10000, "evtFileMenu", 0, "Datei", "'Datei'-Menü"},
    {10002, "evtInsertComment", 10000, "Kommentar einfügen", "Kommentar in den Info-Text einfügen"},
    {10001, "evtSaveVas", 10000, "Speichern unter (*.vas)", "Datei im VAS-Format speichern unter..."},
    {10100, "evtStanfordMenu", 10000, "Exportieren für Stanford", "'Exportieren für Stanford'-Menü"},
    {10101, "evtStanfordVectorField", 10100, "Vektorfeld", "Vektorfeld für Stanford exportieren"},
    {10102, "evtStanfordSwirl2", 10100, "(Swirling Strength)²", "(Swirling Strength)² für Stanford exportieren"},
    {10103, "evtStanfordVorticity", 10100, "Vorticity", "Vorticity für Stanford exportieren"},
    {10104, "evtStanfordVelocityProfile", 10100, "Geschwindigkeitsprofil", "Geschwindigkeitsprofil für Stanford exportieren"},
    {10200, "evtTecPlotMenu", 10000, "Exportieren für TecPlot", "'Exportieren für TecPlot'-Menü"},
    {10201, "evtTecPlotSwirl", 10200, "Swirling Strength", "Swirling Strength für TecPlot exportieren"},
    {10202, "evtTecPlotVorticity", 10200, "Vorticity", "Vorticity für TecPlot exportieren"},
    {10300, "evtMatlabMenu", 10000, "Exportieren für Matlab", "'Exportieren für Matlab'-Menü"},
    {10301, "evtMatlabVectorField", 10300, "Vektorfeld", "Vektorfeld für Matlab exportieren"},
    {10302, "evtMatlabSwirl2", 10300, "(Swirling Strength)²", "(Swirling Strength)² für Matlab exportieren"},
    {20000, "evtBufferMenu", 0, "Buffer", "'Buffer'-Menü"},
    {20002, "evtLoadBuffer", 20000, "Datei in Buffer einladen", "Vektorfeld aus Datei in Buffer einladen"},
    {20001, "evtCopyToBuffer", 20000, "Aktuelles Vektorfeld in Buffer kopieren", kSame},
    {20003, "evtBufferAsMask", 20000, "Buffer als Maske benutzen", "Vektorfeld im Buffer als Maske benutzen"},
    {20004, "evtAddBuffer", 20000, "Buffer zum Vektorfeld addieren", "Buffer zu aktuellem Vektorfeld addieren"},
    {20005, "evtSubtractBuffer", 20000, "Buffer vom Vektorfeld subtrahieren", "Buffer von aktuellem Vektorfeld subtrahieren"},
    {20006, "evtSubtractFromBuffer", 20000, "Vektorfeld vom Buffer subtrahieren", "Vektorfeld vom Buffer subtrahieren (verändert nicht Buffer, sondern Vektorfeld!)"},
    {30000, "evtEditMenu", 0, "Bearbeiten", "'Bearbeiten'-Menü"},
    {30001, "evtFaultVectors", 30000, "Fehlerhafte Vektoren suchen", kSame},
    {30002, "evtMirror", 30000, "Vektorfeld spiegeln", kSame},
    {30003, "evtXYTrafo", 30000, "Koordinatentransformation", kSame},
    {40000, "evtCalcMenu", 0, "Berechnungen", "'Berechnungen'-Menü"},
    {40001, "evtInterpolation", 40000, "Interpolation", "Ungültige Vektoren durch Interpolation ersetzen"},
    {40100, "evtFilterMenu", 40000, "Filter", "'Filter'-Menü"},
    {40101, "evtRect3x3", 40100, "Rechteck (3x3)", "Smoothing mit 3x3 Rechteck-Filter"},
    {40102, "evtRect5x5", 40100, "Rechteck (5x5)", "Smoothing mit 5x5 Rechteck-Filter"},
    {40103, "evtGauss3x3", 40100, "Gauß (3x3)", "Smoothing mit 3x3 Gauß-Filter"},
    {40104, "evtGauss5x5", 40100, "Gauß (5x5)", "Smoothing mit 5x5 Gauß-Filter"},
    {40105, "evtVelocityProfile", 40100, "Geschwindigkeitsprofil", "Geschwindigkeitsprofil erzeugen"},
    {40200, "evtConstVectorMenu", 40000, "Konstanten Vektor...", "'Konstanten Vektor...'-Menü"},
    {40201, "evtAddConstVector", 40200, "...addieren", "Konstanten Vektor addieren"},
    {40202, "evtSubtractConstVector", 40200, "...subtrahieren", "Konstanten Vektor subtrahieren"},
    {40002, "evtVortexCentres", 40000, "Wirbelzentren suchen", kSame},
    {50000, "evtViewMenu", 0, "Ansicht", "'Ansicht'-Menü"},
    {50001, "evtShowHeader", 50000, "Header anzeigen", "Header nach dem Öffnen in Quiverion automatisch anzeigen?"},
    {50002, "evtShowTable", 50000, "Tabelle anzeigen", "Tabelle nach dem Öffnen in Quiverion automatisch anzeigen?"},
    {50003, "evtShowVectorField", 50000, "Vektorfeld anzeigen", "Vektorfeld nach dem Öffnen in Quiverion automatisch zeichnen?"},
    {50004, "evtShowCoordSystem", 50000, "Koordinatensystem anzeigen", "Vektorfeld in Quiverion mit Koordinatensystem zeichnen?"},
    {50005, "evtAspectRatio", 50000, "Seitenverhältnis 1:1", "Vektorfeld in Quiverion im richtigen Höhen-/Breitenverhältnis zeichnen?"},
    {50006, "evtScaleFactor", 50000, "Benutzerdefinierter Skalierungsfaktor", "Benutzerdefinierten Skalierungsfaktor für die Vektor-Darstellung einstellen"},
    {50100, "evtBackgroundMenu", 50000, "Hintergrund", "'Hintergrund'-Menü"},
    {50101, "evtNoBackground", 50100, "Kein Hintergrund", "Keinen Hintergrund im Vektorfeld anzeigen"},
    {50102, "evtSwirl2Background", 50100, "(Swirling Strength)²", "(Swirling Strength)² im Vektorfeld als Hintergrund anzeigen"},
    {50103, "evtVorticityBackground", 50100, "Vorticity", "Vorticity im Vektorfeld als Hintergrund anzeigen"},
    {50104, "evtPaletteMin", 50100, "Minimaler Wert für Farbpalette", "Minimalen Wert für Farbpalette einstellen"},
    {50105, "evtPaletteMax", 50100, "Maximaler Wert für Farbpalette", "Maximalen Wert für Farbpalette einstellen"},
    {50106, "evtPaletteOptimal", 50100, "Optimale Werte für Farbpalette suchen", kSame},
    {60000, "evtStatisticsMenu", 0, "Statistik", "'Statistik'-Menü"},
    {60001, "evtCollectStatistics", 60000, "Vektorfeld für Statistik sammeln", "Vektorfeld für Statistik in Datei (Kollektion) sammeln"},
};
// clang-format on

TEST(CommandCatalogue, HoldsTheTreeInItsOrder) {
  const auto rows = CommandCatalogue();
  ASSERT_EQ(rows.size(), std::size(kTree));
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Entry& expected = kTree[k];
    SCOPED_TRACE(expected.constantName);
    EXPECT_EQ(rows[k].eventId, expected.eventId);
    EXPECT_EQ(rows[k].constantName, expected.constantName);
    EXPECT_EQ(rows[k].parent, expected.parent);
    EXPECT_EQ(MacroEventDescription(expected.eventId, false), expected.shortText);
    EXPECT_EQ(MacroEventDescription(expected.eventId, true),
              expected.longText == kSame ? expected.shortText : expected.longText);
    EXPECT_EQ(rows[k].run == nullptr, expected.eventId % 100 == 0) << "menus and only menus do nothing";
  }
}

TEST(CommandCatalogue, TellsUnknownIds) {
  for (const std::int32_t id : {12345, 0, -1, 10003, 20007, 30000 + 4, 50007, 60002, 2147483647}) {
    EXPECT_EQ(MacroEventDescription(id, true), "Unbekannt!!!") << id;
    EXPECT_EQ(MacroEventDescription(id, false), "Unbekannt!!!") << id;
    EXPECT_EQ(FindCommand(id), nullptr) << id;
    EXPECT_TRUE(ParametersOf(id).empty()) << id;
  }
}

}  // namespace
}  // namespace quiverion::test
