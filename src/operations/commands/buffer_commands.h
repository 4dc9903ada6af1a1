#pragma once

#include <string>

#include "field/context.h"

/// The commands of the buffer field. Each logs its announcement and the outcome.
namespace quiverion {

/// Copies path, grid size, velocities and statuses of the current field to the buffer.
void CopyFieldToBuffer(Context& context);

/// Fills the buffer from a DAT, VAS or VEC file, chosen by the extension of `path`. Does nothing if the buffer has the
/// file name `path` already, that is, after a copy of the field loaded from there (even if a statistic has overwritten
/// the buffer since). A failure is logged as LoadOriginalFile does, sets `abortCurrentFile` and leaves the buffer
/// empty. An unusual status in a VEC file is a warning and sets `runHadError`.
void LoadFileIntoBuffer(Context& context, const std::string& path);

/// The commands below combine the current field with a buffer of the same grid size, as described in
/// buffer_combination.h. If the sizes differ, they log that, set `abortCurrentFile` and change nothing. They throw
/// SystemError 6 at an overflow.
void UseBufferAsMask(Context& context);
void AddBufferToField(Context& context);
void SubtractBufferFromField(Context& context);
void SubtractFieldFromBuffer(Context& context);

}  // namespace quiverion
