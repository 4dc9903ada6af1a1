#pragma once

#include <QIcon>

/// Makes the pictures under ":/icons" known. Called before a form that shows them is built; more than once does no harm.
void UseIcons();

namespace quiverion {

/// The shape of `picture` in the colour that the palette has for the text of buttons, whenever it is painted.
QIcon InTextColour(const QIcon& picture);

}  // namespace quiverion
