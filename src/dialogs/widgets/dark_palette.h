#pragma once

#include <QPalette>

namespace quiverion {

/// True where the desktop shows light text on dark ground: colours made for paper are not readable there.
inline bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

}  // namespace quiverion
