#pragma once

/// Makes the pictures under ":/icons" known. Called before a form that shows them is built; more than once does no harm.
void UseIcons();
