#include "operations/commands/view_settings.h"

#include <cmath>
#include <string>

#include "operations/kernels/derived_scalar.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr std::string_view kNothingShown =
    "Jetzt wird weder Tabelle noch Vektorfeld angezeigt. Das ist in Quiverion nicht erlaubt!\r\n";

std::string SwitchedTo(std::string_view name, bool on) {
  std::string text = "'";
  return text.append(name).append(on ? "' eingeschaltet\r\n" : "' ausgeschaltet\r\n");
}

void LogSwitch(Context& context, std::string_view name, bool on) {
  context.log.WriteLogLine(SwitchedTo(name, on));
}

// Switches `other` on if neither is shown any more.
void KeepOneDisplay(Context& context, bool& other, std::string_view nameOfOther) {
  if (context.field.showTable || context.field.showVectorField) return;
  other = true;
  context.log.WriteLogLine(std::string(kNothingShown) + "    -> " + SwitchedTo(nameOfOther, true));
}

struct Range {
  double min;
  double max;
};

Range RangeOf(const Grid<double>& grid) {
  Range range{grid(1, 1), grid(1, 1)};
  for (const double value : grid.Values()) {
    if (value > range.max) range.max = value;
    if (value < range.min) range.min = value;
  }
  return range;
}

}  // namespace

void InsertInfoComment(Context& context, std::string_view comment) {
  context.log.WriteLogLine("Kommentar in Info-Text einfügen... ");
  std::string& info = context.field.infoText;
  if (!info.empty() && info.back() != '\n') info.append("\r\n");
  info.append(comment).append("\r\n");
  context.log.WriteLogLine("fertig\r\n");
}

void SetShowHeader(Context& context, bool on) {
  context.field.showHeader = on;
  LogSwitch(context, "Header anzeigen", on);
}

void SetShowTable(Context& context, bool on) {
  context.field.showTable = on;
  LogSwitch(context, "Tabelle anzeigen", on);
  KeepOneDisplay(context, context.field.showVectorField, "Vektorfeld anzeigen");
}

void SetShowVectorField(Context& context, bool on) {
  context.field.showVectorField = on;
  LogSwitch(context, "Vektorfeld anzeigen", on);
  KeepOneDisplay(context, context.field.showTable, "Tabelle anzeigen");
}

void SetShowCoordSystem(Context& context, bool on) {
  context.field.showCoordSystem = on ? kFlagTrue : kFlagFalse;
  LogSwitch(context, "Koordinatensystem anzeigen", on);
}

void SetAspectRatio(Context& context, bool on) {
  context.field.aspectRatio1to1 = on ? kFlagTrue : kFlagFalse;
  LogSwitch(context, "Seitenverhältnis 1:1", on);
}

void SetScaleFactor(Context& context, double value) {
  context.field.scaleFactor = value;
  context.log.WriteLogLine("Benutzerdefinierten Skalierungsfaktor auf " + FormatNumber(value) + " gestellt\r\n");
}

void SetBackground(Context& context, Background background) {
  VectorField& field = context.field;
  field.background = background;
  switch (background) {
    case Background::none:
      context.log.WriteLogLine("'Keinen Hintergrund im Vektorfeld anzeigen' gewählt\r\n");
      break;
    case Background::swirl2:
      field.paletteMin = 0;
      field.paletteMax = 1000000;
      context.log.WriteLogLine("'(Swirling Strength)² als Hintergrund im Vektorfeld anzeigen' gewählt\r\n");
      break;
    case Background::vorticity:
      field.paletteMin = -2000;
      field.paletteMax = 2000;
      context.log.WriteLogLine("'Vorticity als Hintergrund im Vektorfeld anzeigen' gewählt\r\n");
      break;
  }
}

void SetPaletteMin(Context& context, double value) {
  VectorField& field = context.field;
  field.paletteMin = value;
  context.log.WriteLogLine("Minimalen Wert für Farbpalette auf " + FormatNumber(value) + " gestellt\r\n");
  if (!(field.paletteMax < field.paletteMin)) return;
  field.paletteMax = field.paletteMin;
  context.log.WriteLogLine(
      "Dann wäre allerdings der bisherige 'maximale Wert' kleiner als der jetzt gewählte 'minimale Wert'\r\n"
      "    -> Stelle 'maximalen Wert' auch neu ein: " +
      FormatNumber(field.paletteMax) + "\r\n");
}

void SetPaletteMax(Context& context, double value) {
  VectorField& field = context.field;
  field.paletteMax = value;
  context.log.WriteLogLine("Maximalen Wert für Farbpalette auf " + FormatNumber(value) + " gestellt\r\n");
  if (!(field.paletteMax < field.paletteMin)) return;
  field.paletteMin = field.paletteMax;
  context.log.WriteLogLine(
      "Dann wäre allerdings der bisherige 'minimale Wert' größer als der jetzt gewählte 'maximale Wert'\r\n"
      "    -> Stelle 'minimalen Wert' auch neu ein: " +
      FormatNumber(field.paletteMin) + "\r\n");
}

void FindOptimalPalette(Context& context) {
  context.log.WriteLogLine("Optimale Werte für Farbpalette automatisch suchen... ");
  VectorField& field = context.field;
  if (field.background == Background::none) {
    context.log.WriteLogLine("Kein Hintergrund eingestellt -> fertig");
    return;
  }
  const bool swirl = field.background == Background::swirl2;
  if (swirl) {
    CalcSwirlingStrength(field);
  } else {
    CalcVorticity(field);
  }
  const Range range = RangeOf(field.derivedScalar);
  const double max = std::fabs(range.max);
  const double min = std::fabs(range.min);
  field.paletteMax = max < min ? min : max;
  field.paletteMin = swirl ? 0.0 : -field.paletteMax;
  context.log.WriteLogLine("fertig\r\n");
  context.log.WriteLogLine("    Minimaler Wert auf " + FormatNumber(field.paletteMin) + " eingestellt\r\n" +
                           "    Maximaler Wert auf " + FormatNumber(field.paletteMax) + " eingestellt\r\n");
}

}  // namespace quiverion
