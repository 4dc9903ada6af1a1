#pragma once

#include "field/buffer_field.h"
#include "field/vector_field.h"
#include "platform/numeric/checked_real.h"
#include "platform/numeric/multi_target.h"

/// The definition of the buffer commands on fields of one size: plain loops in visiting order. `Real` is double, or
/// CheckedReal if the computation must stop at an arithmetic error.
namespace quiverion::plain {

struct FieldPlusBuffer {
  template <class Real>
  QUIVERION_ALWAYS_INLINE Real operator()(Real field, Real buffer) const {
    return field + buffer;
  }
};

struct FieldMinusBuffer {
  template <class Real>
  QUIVERION_ALWAYS_INLINE Real operator()(Real field, Real buffer) const {
    return field - buffer;
  }
};

struct BufferMinusField {
  template <class Real>
  QUIVERION_ALWAYS_INLINE Real operator()(Real field, Real buffer) const {
    return buffer - field;
  }
};

/// Makes the vector invalid or masked.
inline void Invalidate(VectorField& field, std::int32_t i, std::int32_t j, std::int32_t status) {
  if (field.status(i, j) > 0) ChangeValidCount(field, -1);
  field.status(i, j) = status;
}

template <class Real, class Combine>
void CombineWithBuffer(VectorField& field, const BufferField& buffer, Combine combine) {
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      const std::int32_t s = field.status(i, j);
      const std::int32_t b = buffer.bufferStatus(i, j);
      if (s > 0 && b > 0) {
        const Real x = combine(Real(field.velX(i, j)), Real(buffer.bufferVelX(i, j)));
        const Real y = combine(Real(field.velY(i, j)), Real(buffer.bufferVelY(i, j)));
        field.velX(i, j) = ToDouble(x);
        field.velY(i, j) = ToDouble(y);
        field.status(i, j) = 2;
      } else {
        Invalidate(field, i, j, s >= 0 && b >= 0 ? 0 : -1);
      }
    }
  }
}

inline void MaskWithBuffer(VectorField& field, const BufferField& buffer) {
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      if (buffer.bufferStatus(i, j) < 0) Invalidate(field, i, j, -1);
    }
  }
}

}  // namespace quiverion::plain
