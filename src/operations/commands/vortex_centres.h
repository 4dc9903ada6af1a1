#pragma once

#include <string>

#include "field/context.h"

namespace quiverion {

/// Finds vortex centres as local maxima of the squared swirling strength, which is in derivedScalar afterwards, and
/// logs the steps. Their number is in `vortexCentres` of the context.
///
/// The maxima are appended to the text file `textPath` unless that is empty. A failure is logged and sets
/// `runHadError`; Cancel on a full disk also sets `userAbortRequested` and ends the command at once. Both leave the
/// text file as it was.
///
/// With `autoTrafo` a copy of the field, moving with the centre, is saved for each centre that is not an isolated peak:
/// Swirl1.vas, Swirl2.vas ... in a directory next to the input file and with its base name. Afterwards the current
/// field is the same except for the rounding of its velocities. Sets flags as SaveVas does; Cancel there ends the
/// series of copies.
///
/// Throws SystemError at an arithmetic error; info text and Galilei point are then unchanged.
void FindVortexCentres(Context& context, const std::string& textPath, bool autoTrafo);

}  // namespace quiverion
