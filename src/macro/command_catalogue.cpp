#include "macro/command_catalogue.h"

#include <algorithm>

#include "exchange/field_exports.h"
#include "export/text_exports.h"
#include "macro/command_actions.h"
#include "operations/commands/buffer_commands.h"
#include "operations/commands/filters.h"
#include "operations/commands/interpolate_invalid_vectors.h"
#include "operations/commands/transformations.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr Parameter Text(std::string_view key, std::string_view label, std::string_view preset = "",
                         FileRole role = FileRole::none) {
  return {.key = key,
          .label = label,
          .kind = ParameterKind::text,
          .encoding = FileEncoding::text,
          .preset = preset,
          .role = role};
}
constexpr Parameter Flag(std::string_view key, std::string_view label, std::string_view preset = "0",
                         FileRole role = FileRole::none) {
  return {.key = key,
          .label = label,
          .kind = ParameterKind::flag,
          .encoding = FileEncoding::bool16,
          .preset = preset,
          .role = role};
}
constexpr Parameter CheckState(std::string_view key, std::string_view label, std::string_view preset = "0") {
  return {key, label, ParameterKind::checkState, FileEncoding::int32, preset, 0, 1};
}
constexpr Parameter Integer(std::string_view key, std::string_view label, std::string_view preset, double low,
                            double high) {
  return {key, label, ParameterKind::integer, FileEncoding::int32, preset, low, high};
}
constexpr Parameter Number(std::string_view key, std::string_view label, std::string_view preset) {
  return {key, label, ParameterKind::number, FileEncoding::float64, preset};
}
constexpr Parameter HalfWidth(std::string_view key, std::string_view label) {
  return Integer(key, label, "2", 0, kLargestHalfWidth);
}
// A double in memory, rounded to an integer in the file: macro files have always lost the fraction here.
constexpr Parameter Component(std::string_view key, std::string_view label) {
  return {key, label, ParameterKind::number, FileEncoding::int32, "0"};
}

// A result beside the input, or below it.
constexpr Parameter Prefix(std::string_view preset) {
  return Text("Prefix", "Prefix", preset, FileRole::writes);
}
constexpr Parameter kPostfix = Text("Postfix", "Postfix", "", FileRole::writes);

constexpr Parameter kNames[] = {Prefix(""), kPostfix};
constexpr Parameter kVectorFieldNames[] = {Prefix("VF of "), kPostfix};
constexpr Parameter kSwirlNames[] = {Prefix("SW of "), kPostfix};
constexpr Parameter kVorticityNames[] = {Prefix("VOR of "), kPostfix};
constexpr Parameter kProfileNames[] = {Prefix("VP of "), kPostfix};
constexpr Parameter kComment[] = {Text("Comment", "Kommentar")};
constexpr Parameter kBufferFile[] = {Text("FileName", "Datei", "", FileRole::reads)};
constexpr Parameter kCollection[] = {Text("FileName", "Kollektion", "", FileRole::appends)};
constexpr Parameter kVortexCentres[] = {Text("FileName", "Textdatei für die Zentren", "", FileRole::appends),
                                        Flag("AutoTrafo", "Transformierte Felder speichern", "0", FileRole::writes)};
constexpr Parameter kMirror[] = {CheckState("ChkPosX", "Positionen in x-Richtung spiegeln", "1"),
                                 CheckState("ChkPosY", "Positionen in y-Richtung spiegeln")};
constexpr Parameter kXYTrafo[] = {Text("TxtFakX", "Faktor der x-Koordinate", "1"),
                                  Text("TxtDeltaX", "Verschiebung der x-Koordinate in Millimetern", "0"),
                                  Text("TxtFakY", "Faktor der y-Koordinate", "1"),
                                  Text("TxtDeltaY", "Verschiebung der y-Koordinate in Millimetern", "0"),
                                  Text("TxtFakVecX", "Faktor der x-Komponente", "1"),
                                  Text("TxtFakVecY", "Faktor der y-Komponente", "1")};
constexpr Parameter kConstVector[] = {Component("XComp", "x-Komponente in m/s"),
                                      Component("YComp", "y-Komponente in m/s")};
constexpr Parameter kChecked[] = {Flag("Checked", "Antwort")};
constexpr Parameter kScaleFactor[] = {
    {"Value", "Skalierungsfaktor", ParameterKind::number, FileEncoding::float64, "1.0", 0.1, 10.0}};
constexpr Parameter kPaletteLimit[] = {Number("Value", "Wert", "0.0")};
constexpr Parameter kFaultVectors[] = {CheckState("ChkAbsDeviation", "Abweichung vom Betrag prüfen"),
                                       Text("TxtAbsDeviation", "Abweichung vom Betrag in Prozent", "30"),
                                       CheckState("ChkAbsInterval", "Betrag prüfen"),
                                       Flag("OptAbsIntOut", "Betrag außerhalb des Intervalls", "1"),
                                       Text("TxtAbsIntMin", "Betrag, untere Intervallgrenze in m/s", "0"),
                                       Text("TxtAbsIntMax", "Betrag, obere Intervallgrenze in m/s", "10"),
                                       CheckState("ChkDirDeviation", "Abweichung von der Richtung prüfen"),
                                       Text("TxtDirDeviation", "Abweichung von der Richtung in Grad", "10"),
                                       CheckState("ChkXComp", "x-Komponente prüfen"),
                                       Flag("OptXCompIntOut", "x-Komponente außerhalb des Intervalls", "1"),
                                       Text("TxtXCompIntMin", "x-Komponente, untere Intervallgrenze in m/s", "-10"),
                                       Text("TxtXCompIntMax", "x-Komponente, obere Intervallgrenze in m/s", "10"),
                                       CheckState("ChkYComp", "y-Komponente prüfen"),
                                       Flag("OptYCompIntOut", "y-Komponente außerhalb des Intervalls", "1"),
                                       Text("TxtYCompIntMin", "y-Komponente, untere Intervallgrenze in m/s", "-10"),
                                       Text("TxtYCompIntMax", "y-Komponente, obere Intervallgrenze in m/s", "10"),
                                       Integer("CompareVectorType", "Vergleichsvektor", "1", 1, 4),
                                       HalfWidth("CboMedianX", "Bereich des Medians, Breite"),
                                       HalfWidth("CboMedianY", "Bereich des Medians, Höhe"),
                                       HalfWidth("CboLocalMiddleX", "Bereich des lokalen Mittelwerts, Breite"),
                                       HalfWidth("CboLocalMiddleY", "Bereich des lokalen Mittelwerts, Höhe"),
                                       Text("TxtUserVectorX", "Vergleichsvektor, x-Komponente in m/s", "0"),
                                       Text("TxtUserVectorY", "Vergleichsvektor, y-Komponente in m/s", "0"),
                                       Flag("LogicalOr", "Ein Kriterium genügt", "1")};

constexpr ParameterEditor Question(std::string_view title, std::string_view text) {
  return {EditorKind::question, title, text};
}
constexpr ParameterEditor NumberBox(std::string_view title, std::string_view text) {
  return {EditorKind::number, title, text};
}
constexpr ParameterEditor ConstVector(std::string_view title) {
  return {EditorKind::constVector, title};
}
constexpr ParameterEditor Editor(EditorKind kind) {
  return {.kind = kind};
}
constexpr ParameterEditor kNamesEditor = Editor(EditorKind::names);

constexpr CommandRow Menu(std::int32_t eventId, std::string_view name, std::int32_t parent, std::string_view shortText,
                          std::string_view longText) {
  return {eventId, name, parent, shortText, longText, {}, 0, nullptr};
}

constexpr CommandRow Changing(StatusEffect statuses, CommandRow row) {
  row.statuses = statuses;
  return row;
}
constexpr CommandRow FindingVortices(CommandRow row) {
  row.findsVortices = true;
  return row;
}

// clang-format off
constexpr CommandRow kRows[] = {
    Menu(10000, "evtFileMenu", 0, "Datei", "'Datei'-Menü"),
    {10002, "evtInsertComment", 10000, "Kommentar einfügen",
     "Kommentar in den Info-Text einfügen", kComment, 0, actions::InsertComment, Editor(EditorKind::comment)},
    {10001, "evtSaveVas", 10000, "Speichern unter (*.vas)",
     "Datei im VAS-Format speichern unter...", kNames, 90, actions::SaveAsVas, kNamesEditor, ".vas"},
    Menu(10100, "evtStanfordMenu", 10000, "Exportieren für Stanford", "'Exportieren für Stanford'-Menü"),
    {10101, "evtStanfordVectorField", 10100, "Vektorfeld",
     "Vektorfeld für Stanford exportieren", kVectorFieldNames, 500, actions::Export<ExportStanfordVectorField>, kNamesEditor, ".txt"},
    {10102, "evtStanfordSwirl2", 10100, "(Swirling Strength)²",
     "(Swirling Strength)² für Stanford exportieren", kSwirlNames, 50, actions::Export<ExportStanfordSwirl2>, kNamesEditor, ".txt"},
    {10103, "evtStanfordVorticity", 10100, "Vorticity",
     "Vorticity für Stanford exportieren", kVorticityNames, 50, actions::Export<ExportStanfordVorticity>, kNamesEditor, ".txt"},
    {10104, "evtStanfordVelocityProfile", 10100, "Geschwindigkeitsprofil",
     "Geschwindigkeitsprofil für Stanford exportieren", kProfileNames, 10, actions::Export<ExportStanfordVelocityProfile>, kNamesEditor, ".txt"},
    Menu(10200, "evtTecPlotMenu", 10000, "Exportieren für TecPlot", "'Exportieren für TecPlot'-Menü"),
    {10201, "evtTecPlotSwirl", 10200, "Swirling Strength",
     "Swirling Strength für TecPlot exportieren", kSwirlNames, 250, actions::Export<ExportTecPlotSwirl>, kNamesEditor, ".txt"},
    {10202, "evtTecPlotVorticity", 10200, "Vorticity",
     "Vorticity für TecPlot exportieren", kVorticityNames, 300, actions::Export<ExportTecPlotVorticity>, kNamesEditor, ".txt"},
    Menu(10300, "evtMatlabMenu", 10000, "Exportieren für Matlab", "'Exportieren für Matlab'-Menü"),
    {10301, "evtMatlabVectorField", 10300, "Vektorfeld",
     "Vektorfeld für Matlab exportieren", kVectorFieldNames, 400, actions::Export<ExportMatlabVectorField>, kNamesEditor, ".csv"},
    {10302, "evtMatlabSwirl2", 10300, "(Swirling Strength)²",
     "(Swirling Strength)² für Matlab exportieren", kSwirlNames, 50, actions::Export<ExportMatlabSwirl2>, kNamesEditor, ".csv"},
    Menu(20000, "evtBufferMenu", 0, "Buffer", "'Buffer'-Menü"),
    {20002, "evtLoadBuffer", 20000, "Datei in Buffer einladen",
     "Vektorfeld aus Datei in Buffer einladen", kBufferFile, 0, actions::LoadBuffer, Editor(EditorKind::bufferFile)},
    {20001, "evtCopyToBuffer", 20000, "Aktuelles Vektorfeld in Buffer kopieren",
     "Aktuelles Vektorfeld in Buffer kopieren", {}, 0, actions::Plain<CopyFieldToBuffer>},
    Changing(StatusEffect::changes, {20003, "evtBufferAsMask", 20000, "Buffer als Maske benutzen",
     "Vektorfeld im Buffer als Maske benutzen", {}, 0, actions::Plain<UseBufferAsMask>}),
    Changing(StatusEffect::changes, {20004, "evtAddBuffer", 20000, "Buffer zum Vektorfeld addieren",
     "Buffer zu aktuellem Vektorfeld addieren", {}, 0, actions::Plain<AddBufferToField>}),
    Changing(StatusEffect::changes, {20005, "evtSubtractBuffer", 20000, "Buffer vom Vektorfeld subtrahieren",
     "Buffer von aktuellem Vektorfeld subtrahieren", {}, 0, actions::Plain<SubtractBufferFromField>}),
    Changing(StatusEffect::changes, {20006, "evtSubtractFromBuffer", 20000, "Vektorfeld vom Buffer subtrahieren",
     "Vektorfeld vom Buffer subtrahieren (verändert nicht Buffer, sondern Vektorfeld!)", {}, 0, actions::Plain<SubtractFieldFromBuffer>}),
    Menu(30000, "evtEditMenu", 0, "Bearbeiten", "'Bearbeiten'-Menü"),
    Changing(StatusEffect::changes, {30001, "evtFaultVectors", 30000, "Fehlerhafte Vektoren suchen",
     "Fehlerhafte Vektoren suchen", kFaultVectors, 0, actions::FaultVectors, Editor(EditorKind::faultVectors)}),
    Changing(StatusEffect::moves, {30002, "evtMirror", 30000, "Vektorfeld spiegeln",
     "Vektorfeld spiegeln", kMirror, 0, actions::Mirror, Editor(EditorKind::mirror)}),
    {30003, "evtXYTrafo", 30000, "Koordinatentransformation",
     "Koordinatentransformation", kXYTrafo, 0, actions::XYTrafo, Editor(EditorKind::coordinates)},
    Menu(40000, "evtCalcMenu", 0, "Berechnungen", "'Berechnungen'-Menü"),
    Changing(StatusEffect::changes, {40001, "evtInterpolation", 40000, "Interpolation",
     "Ungültige Vektoren durch Interpolation ersetzen", {}, 0, actions::Plain<InterpolateInvalidVectors>}),
    Menu(40100, "evtFilterMenu", 40000, "Filter", "'Filter'-Menü"),
    Changing(StatusEffect::changes, {40101, "evtRect3x3", 40100, "Rechteck (3x3)",
     "Smoothing mit 3x3 Rechteck-Filter", {}, 0, actions::Plain<FilterRect3x3>}),
    Changing(StatusEffect::changes, {40102, "evtRect5x5", 40100, "Rechteck (5x5)",
     "Smoothing mit 5x5 Rechteck-Filter", {}, 0, actions::Plain<FilterRect5x5>}),
    Changing(StatusEffect::changes, {40103, "evtGauss3x3", 40100, "Gauß (3x3)",
     "Smoothing mit 3x3 Gauß-Filter", {}, 0, actions::Plain<FilterGauss3x3>}),
    Changing(StatusEffect::changes, {40104, "evtGauss5x5", 40100, "Gauß (5x5)",
     "Smoothing mit 5x5 Gauß-Filter", {}, 0, actions::Plain<FilterGauss5x5>}),
    Changing(StatusEffect::changes, {40105, "evtVelocityProfile", 40100, "Geschwindigkeitsprofil",
     "Geschwindigkeitsprofil erzeugen", {}, 0, actions::Plain<FilterVelocityProfile>}),
    Menu(40200, "evtConstVectorMenu", 40000, "Konstanten Vektor...", "'Konstanten Vektor...'-Menü"),
    {40201, "evtAddConstVector", 40200, "...addieren",
     "Konstanten Vektor addieren", kConstVector, 0, actions::Components<AddConstantVector>,
     ConstVector("Zu addierender Vektor")},
    {40202, "evtSubtractConstVector", 40200, "...subtrahieren",
     "Konstanten Vektor subtrahieren", kConstVector, 0, actions::Components<SubtractConstantVector>,
     ConstVector("Zu subtrahierender Vektor")},
    FindingVortices({40002, "evtVortexCentres", 40000, "Wirbelzentren suchen",
     "Wirbelzentren suchen", kVortexCentres, 0, actions::VortexCentres, Editor(EditorKind::vortexCentres)}),
    Menu(50000, "evtViewMenu", 0, "Ansicht", "'Ansicht'-Menü"),
    {50001, "evtShowHeader", 50000, "Header anzeigen",
     "Header nach dem Öffnen in Quiverion automatisch anzeigen?", kChecked, 0, actions::Checked<SetShowHeader>,
     Question("Datei-Header anzeigen?",
              "Soll der Datei-Header nach dem Einladen der jeweils aktuellen Datei in Quiverion automatisch angezeigt werden?")},
    {50002, "evtShowTable", 50000, "Tabelle anzeigen",
     "Tabelle nach dem Öffnen in Quiverion automatisch anzeigen?", kChecked, 0, actions::Checked<SetShowTable>,
     Question("Tabelle anzeigen?",
              "Soll die Tabelle nach dem Einladen der jeweils aktuellen Datei in Quiverion automatisch angezeigt werden?")},
    {50003, "evtShowVectorField", 50000, "Vektorfeld anzeigen",
     "Vektorfeld nach dem Öffnen in Quiverion automatisch zeichnen?", kChecked, 0, actions::Checked<SetShowVectorField>,
     Question("Vektorfeld zeichnen?",
              "Soll das Vektorfeld nach dem Einladen der jeweils aktuellen Datei in Quiverion automatisch gezeichnet werden?")},
    {50004, "evtShowCoordSystem", 50000, "Koordinatensystem anzeigen",
     "Vektorfeld in Quiverion mit Koordinatensystem zeichnen?", kChecked, 0, actions::Checked<SetShowCoordSystem>,
     Question("Koordinatensystem anzeigen?",
              "Soll das Vektorfeld in Quiverion mit Koordinatensystem gezeichnet werden?")},
    {50005, "evtAspectRatio", 50000, "Seitenverhältnis 1:1",
     "Vektorfeld in Quiverion im richtigen Höhen-/Breitenverhältnis zeichnen?", kChecked, 0, actions::Checked<SetAspectRatio>,
     Question("Richtiges Seitenverhältnis?",
              "Soll das Vektorfeld in Quiverion mit dem richtigen Höhen-/Breitenverhältnis gezeichnet werden?")},
    {50006, "evtScaleFactor", 50000, "Benutzerdefinierter Skalierungsfaktor",
     "Benutzerdefinierten Skalierungsfaktor für die Vektor-Darstellung einstellen", kScaleFactor, 0, actions::Value<SetScaleFactor>,
     NumberBox("Skalierungsfaktor ändern",
               "Geben Sie den neuen Skalierungsfaktor für die Vektorfeld-Darstellung ein:")},
    Menu(50100, "evtBackgroundMenu", 50000, "Hintergrund", "'Hintergrund'-Menü"),
    {50101, "evtNoBackground", 50100, "Kein Hintergrund",
     "Keinen Hintergrund im Vektorfeld anzeigen", {}, 0, actions::ChooseBackground<Background::none>},
    {50102, "evtSwirl2Background", 50100, "(Swirling Strength)²",
     "(Swirling Strength)² im Vektorfeld als Hintergrund anzeigen", {}, 0, actions::ChooseBackground<Background::swirl2>},
    {50103, "evtVorticityBackground", 50100, "Vorticity",
     "Vorticity im Vektorfeld als Hintergrund anzeigen", {}, 0, actions::ChooseBackground<Background::vorticity>},
    {50104, "evtPaletteMin", 50100, "Minimaler Wert für Farbpalette",
     "Minimalen Wert für Farbpalette einstellen", kPaletteLimit, 0, actions::Value<SetPaletteMin>,
     NumberBox("Minimaler Wert für Farbpalette",
               "Geben Sie den neuen minimalen Wert für die Farbpalette des Vektorfeld-Hintergrundes ein:")},
    {50105, "evtPaletteMax", 50100, "Maximaler Wert für Farbpalette",
     "Maximalen Wert für Farbpalette einstellen", kPaletteLimit, 0, actions::Value<SetPaletteMax>,
     NumberBox("Maximaler Wert für Farbpalette",
               "Geben Sie den neuen maximalen Wert für die Farbpalette des Vektorfeld-Hintergrundes ein:")},
    {50106, "evtPaletteOptimal", 50100, "Optimale Werte für Farbpalette suchen",
     "Optimale Werte für Farbpalette suchen", {}, 0, actions::Plain<FindOptimalPalette>},
    Menu(60000, "evtStatisticsMenu", 0, "Statistik", "'Statistik'-Menü"),
    {60001, "evtCollectStatistics", 60000, "Vektorfeld für Statistik sammeln",
     "Vektorfeld für Statistik in Datei (Kollektion) sammeln", kCollection, 0, actions::CollectStatistics,
     Editor(EditorKind::collectionFile)},
    Menu(70000, "evtExtensionsMenu", 0, "Erweiterungen", "'Erweiterungen'-Menü"),
    Menu(70100, "evtExchangeMenu", 70000, "Exportieren", "'Exportieren'-Menü"),
    {70101, "evtExportNetCdf", 70100, "netCDF",
     "Vektorfeld als netCDF exportieren", kNames, 330, actions::Export<exchange::ExportNetCdf>, kNamesEditor, ".nc"},
    {70102, "evtExportVtk", 70100, "VTK (ParaView)",
     "Vektorfeld für VTK (ParaView) exportieren", kNames, 350, actions::Export<exchange::ExportVtk>, kNamesEditor, ".vti"},
    {70103, "evtExportTecplotField", 70100, "Tecplot (alle Größen)",
     "Vektorfeld für Tecplot exportieren (alle Größen)", kNames, 1100, actions::Export<exchange::ExportTecplotField>, kNamesEditor, ".tec"},
};
// clang-format on

constexpr std::string_view kUnknown = "Unbekannt!!!";

}  // namespace

std::span<const CommandRow> CommandCatalogue() {
  return kRows;
}

MacroValue PresetOf(const Parameter& parameter) {
  const std::string text(parameter.preset);
  switch (parameter.kind) {
    case ParameterKind::text:
      return text;
    case ParameterKind::flag:
      return ReadParameterNumber(text) != 0.0;
    case ParameterKind::checkState:
    case ParameterKind::integer:
      return RoundToInt32(ReadParameterNumber(text));
    case ParameterKind::number:
      break;
  }
  return ReadParameterNumber(text);
}

const CommandRow* FindCommand(std::int32_t eventId) {
  const auto found = std::find_if(std::begin(kRows), std::end(kRows),
                                  [eventId](const CommandRow& row) { return row.eventId == eventId; });
  return found == std::end(kRows) ? nullptr : found;
}

const CommandRow* FindCommand(std::string_view constantName) {
  const auto found = std::find_if(std::begin(kRows), std::end(kRows), [constantName](const CommandRow& row) {
    return EqualsIgnoringCase(row.constantName, constantName);
  });
  return found == std::end(kRows) ? nullptr : found;
}

std::span<const Parameter> ParametersOf(std::int32_t eventId) {
  const CommandRow* const row = FindCommand(eventId);
  return row == nullptr ? std::span<const Parameter>() : row->parameters;
}

std::string_view MacroEventDescription(std::int32_t eventId, bool longForm) {
  const CommandRow* const row = FindCommand(eventId);
  if (row == nullptr) return kUnknown;
  return longForm ? row->longText : row->shortText;
}

}  // namespace quiverion
