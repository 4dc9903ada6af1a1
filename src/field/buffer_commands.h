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

/// The commands below combine the current field with a buffer of the same grid size. Another size is logged, sets
/// `abortCurrentFile` and changes nothing. Every vector that stops being valid is taken off `validVectorCount`. They
/// throw SystemError 6 at an overflow: visited column by column, the points before it are done, the rest is as it was.

/// Vectors that are masked (status < 0) in the buffer get status -1.
void UseBufferAsMask(Context& context);

/// Where both vectors are valid the field takes the sum or difference and status 2; else its vector stays and becomes
/// masked (-1) where one of the two is, invalid (0) where none is.
void AddBufferToField(Context& context);
void SubtractBufferFromField(Context& context);
void SubtractFieldFromBuffer(Context& context);

}  // namespace quiverion
