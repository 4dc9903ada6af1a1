#pragma once

#include <QIcon>

/// Registers the pictures under ":/icons". Call it before building a form that shows them; it may be called repeatedly.
void UseIcons();

namespace quiverion {

/// The shape of `picture` in the colour that the palette has for the text of buttons, whenever it is painted.
QIcon InTextColour(const QIcon& picture);

}  // namespace quiverion
