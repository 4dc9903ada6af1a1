#include "dialogs/widgets/severity_colours.h"

#include "dialogs/widgets/dark_palette.h"

namespace quiverion {

QColor SeverityColour(Severity severity, const QPalette& palette) {
  const bool isDark = IsDark(palette);
  switch (severity) {
    case Severity::danger:
      return isDark ? QColor(255, 120, 120) : QColor(190, 0, 0);
    case Severity::warning:
      return isDark ? QColor(240, 180, 70) : QColor(140, 80, 0);
    case Severity::note:
      break;
  }
  return palette.color(QPalette::WindowText);
}

QColor LinkColour(const QPalette& palette) {
  return IsDark(palette) ? QColor(120, 180, 255) : QColor(0, 80, 180);
}

}  // namespace quiverion
