#pragma once

#include <string>

#include "field/context.h"

namespace quiverion {

/// The x and y components of the result. For each vector, only the n fields count in which it is valid: u and v are its
/// velocity components there (m/s), <> is the mean over these fields, u' and v' are the deviations from the mean.
enum class StatisticKind {
  mean,                // <u>, <v>
  standardDeviation,   // of u and of v, n - 1 in the denominator; valid for n >= 2, as are the following
  fluctuationSquares,  // <u'²>, <v'²>
  fluctuationProduct,  // <u'v'>, 0
  turbulence,   // sqrt((<u'²> + <v'²>) / 2) / length of the mean; <u'v'> d<u>/dy (m²/s³). Needs a row next to it
  dissipation,  // 15 nu <(du'/dx)² + (du'/dy)² + dv'/dy du'/dx> (m²/s³), 0. Valid for one sample or more
};

/// Computes one statistic over a collection, which becomes the current field and is saved as a VAS file. `viscosity`:
/// nu in m²/s, only for the dissipation (isotropic turbulence). If rounding leaves a variance below 0, the standard
/// deviation is 0. If the mean velocity is 0, the degree of turbulence is 0 and the vector invalid. Invalid vectors of
/// the result contain intermediate sums.
///
/// One record is in memory at a time, in the buffer field. The last one stays there (for the dissipation its
/// fluctuations), under the name that the buffer had before: a load of that file would not read it again. Two passes
/// read the file twice. Shows its progress and yields after each record. A failure,
/// including an arithmetic error, is shown in a message box, and nothing is saved; nor is it if a yield asks to stop,
/// or if another entry point is running. The save logs as SaveVas does and sets its flags; `runHadError` is not reset
/// before. Returns true if SaveVas was reached.
bool ComputeStatistic(Context& context, StatisticKind kind, const std::string& collectionPath,
                      const std::string& outputPath, double viscosity = 0.0);

}  // namespace quiverion
