#pragma once

#include "field/buffer_field.h"
#include "field/vector_field.h"

/// The current field combined with a buffer of the same grid size. Every vector that stops being valid is taken off
/// `validVectorCount`.
namespace quiverion {

/// Vectors that are masked (status < 0) in the buffer get status -1.
void MaskWithBuffer(VectorField& field, const BufferField& buffer);

/// If both vectors are valid the field takes the sum or difference and status 2; otherwise its vector stays and becomes
/// masked (-1) if one of the two is, invalid (0) if none is. Throws SystemError 6 at an overflow: visited column by
/// column, the points before it are done, the rest is as before.
void AddBuffer(VectorField& field, const BufferField& buffer);
void SubtractBuffer(VectorField& field, const BufferField& buffer);
void SubtractFromBuffer(VectorField& field, const BufferField& buffer);

}  // namespace quiverion
