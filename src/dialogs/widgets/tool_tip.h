#pragma once

#include <QStringList>

namespace quiverion {

/// A tool tip of these lines as they are: not as rich text, even if a name looks like it, and none too long for the
/// screen.
inline QString ToolTipOf(const QStringList& lines) {
  constexpr qsizetype longest = 150;
  QStringList shown;
  for (const QString& line : lines) {
    const bool fits = line.size() <= longest;
    shown.append((fits ? line : line.left(longest / 2) + QChar(0x2026) + line.right(longest / 2)).toHtmlEscaped());
  }
  return shown.isEmpty() ? QString() : "<p style='white-space:pre'>" + shown.join("<br>") + "</p>";
}

}  // namespace quiverion
