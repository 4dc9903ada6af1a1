#pragma once

#include <QPalette>
#include <array>

#include "dialogs/widgets/dark_palette.h"
#include "log/run_log.h"

namespace quiverion {

using LogColours = std::array<QRgb, 3>;  // in the order of LogColour

inline constexpr LogColours kLogColoursOnPaper = {qRgb(0, 0, 0), qRgb(200, 0, 0), qRgb(0, 200, 0)};

/// The same ones where the ground is light, else lighter ones.
inline LogColours OnScreen(const QPalette& palette) {
  if (!IsDark(palette)) return kLogColoursOnPaper;
  return {palette.color(QPalette::Text).rgb(), qRgb(255, 120, 120), qRgb(90, 220, 90)};
}

}  // namespace quiverion
