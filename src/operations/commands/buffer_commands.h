#pragma once

#include <string>

#include "field/context.h"

/// The commands of the buffer field. Each logs its announcement and the outcome.
namespace quiverion {

/// The buffer takes path, grid size, velocities and statuses of the current field.
void CopyFieldToBuffer(Context& context);

/// Fills the buffer from a DAT, VAS or VEC file, chosen by what follows the last "." of `path`. Nothing happens where
/// the buffer holds the field of this path already. A failure is logged as LoadOriginalFile does, sets
/// `abortCurrentFile` and leaves the buffer empty. An unusual status in a VEC file is a warning and sets `runHadError`.
void LoadFileIntoBuffer(Context& context, const std::string& path);

/// The commands below combine the current field with a buffer of the same grid size, as buffer_combination.h says.
/// Another size is logged, sets `abortCurrentFile` and changes nothing. They throw SystemError 6 at an overflow.
void UseBufferAsMask(Context& context);
void AddBufferToField(Context& context);
void SubtractBufferFromField(Context& context);
void SubtractFieldFromBuffer(Context& context);

}  // namespace quiverion
