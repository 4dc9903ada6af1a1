#pragma once

#include <QColor>
#include <QPalette>

#include "macro/run_plan.h"

namespace quiverion {

/// The colour of a text of this severity on the ground of a window; a note has the colour of other texts.
QColor SeverityColour(Severity severity, const QPalette& palette);

/// The colour of what looks like a link. The palette's own is often too dark for a dark ground.
QColor LinkColour(const QPalette& palette);

}  // namespace quiverion
