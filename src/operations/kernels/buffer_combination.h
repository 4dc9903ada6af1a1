#pragma once

#include "field/buffer_field.h"
#include "field/vector_field.h"

/// Combines the current field with a buffer of the same grid size. Lowers `validVectorCount` for every vector that
/// stops being valid.
namespace quiverion {

/// Vectors that are masked (status < 0) in the buffer get status -1.
void MaskWithBuffer(VectorField& field, const BufferField& buffer);

/// If both vectors are valid, the field gets the sum or difference and status 2. Otherwise its velocity stays, and its
/// status becomes masked (-1) if one of the two is masked, else invalid (0). Throws SystemError 6 at an overflow: in
/// column-by-column order, the points before it are done, the rest is unchanged.
void AddBuffer(VectorField& field, const BufferField& buffer);
void SubtractBuffer(VectorField& field, const BufferField& buffer);
void SubtractFromBuffer(VectorField& field, const BufferField& buffer);

}  // namespace quiverion
