#pragma once

#include "field/vector_field.h"
#include "operations/kernels/weight_matrix.h"
#include "platform/numeric/checked_real.h"

/// The definition of the filters: plain loops in visiting order. `Real` is double, or CheckedReal if the computation
/// must stop at an arithmetic error with the points before it done.
namespace quiverion::plain {

/// Every vector whose status is not negative becomes the weighted mean of the valid vectors under the kernel, status 2.
/// If there are none (or their weights add up to 0), it becomes invalid.
template <class Real>
void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights) {
  const Grid<double> velX = field.velX;
  const Grid<double> velY = field.velY;
  const Grid<std::int32_t> status = field.status;
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      if (status(i, j) < 0) continue;
      Real sumU = 0.0, sumV = 0.0, sumW = 0.0;
      for (std::int32_t k = weights.FirstK(); k <= weights.LastK(); ++k) {
        for (std::int32_t l = weights.FirstL(); l <= weights.LastL(); ++l) {
          if (i + k < 1 || i + k > field.columnCount || j + l < 1 || j + l > field.rowCount) continue;
          if (status(i + k, j + l) <= 0) continue;
          const Real w = weights(k, l);
          sumU = sumU + w * Real(velX(i + k, j + l));
          sumV = sumV + w * Real(velY(i + k, j + l));
          sumW = sumW + w;
        }
      }
      if (sumW == 0.0) {
        if (field.status(i, j) != 0) ChangeValidCount(field, -1);
        field.status(i, j) = 0;
        continue;
      }
      const Real u = sumU / sumW, v = sumV / sumW;
      field.velX(i, j) = ToDouble(u);
      field.velY(i, j) = ToDouble(v);
      if (field.status(i, j) == 0) ChangeValidCount(field, 1);
      field.status(i, j) = 2;
    }
  }
}

}  // namespace quiverion::plain
