#pragma once

#include <string_view>

#include "field/context.h"

/// The commands that change the view settings in a VAS file, and the info text. They use stored values without checks
/// and report in the log. None of them fails, except the palette search at an arithmetic error.
namespace quiverion {

/// Appends `comment` to the info text as a new line.
void InsertInfoComment(Context& context, std::string_view comment);

void SetShowHeader(Context& context, bool on);
void SetShowCoordSystem(Context& context, bool on);
void SetAspectRatio(Context& context, bool on);

/// The viewer must show at least the table or the vector plot, so switching one of them off may switch the other on.
void SetShowTable(Context& context, bool on);
void SetShowVectorField(Context& context, bool on);

void SetScaleFactor(Context& context, double value);

/// Chooses what is drawn behind the vectors; a quantity comes with its usual palette.
void SetBackground(Context& context, Background background);

/// The lower end of the palette is never above its upper end: if necessary, the other end follows.
void SetPaletteMin(Context& context, double value);
void SetPaletteMax(Context& context, double value);

/// Palette limits from the extremes of the background quantity: symmetric about 0, for the squared swirling
/// strength from 0. Throws SystemError at an arithmetic error.
void FindOptimalPalette(Context& context);

}  // namespace quiverion
