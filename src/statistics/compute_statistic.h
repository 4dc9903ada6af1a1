#pragma once

#include <string>

#include "field/context.h"

namespace quiverion {

enum class StatisticKind { mean, standardDeviation, fluctuationSquares, fluctuationProduct, turbulence, dissipation };

/// Computes one statistic over a collection, which becomes the current field and is saved as a VAS file. For each vector the n
/// fields count in which it is valid; u and v are its velocity components (m/s), u' and v' their deviations from
/// the mean.
///
/// | kind               | x component                                    | y component             | valid where |
/// |--------------------|------------------------------------------------|-------------------------|-------------|
/// | mean               | mean of u                                      | mean of v               | n >= 1      |
/// | standardDeviation  | of u, n - 1 in the denominator                 | of v                    | n >= 2      |
/// | fluctuationSquares | <u'²>, n in the denominator                    | <v'²>                   | n >= 2      |
/// | fluctuationProduct | <u'v'>, n in the denominator                   | 0                       | n >= 2      |
/// | turbulence         | sqrt((<u'²> + <v'²>)/2) / length of the mean   | <u'v'> dU/dy (m²/s³)    | n >= 2 and a row above or below |
/// | dissipation        | 15 nu (mean of (du'/dx)² + (du'/dy)² + dv'/dy du'/dx) (m²/s³) | 0        | one sample or more |
///
/// `viscosity`: nu in m²/s, only for the dissipation (isotropic turbulence). Where the mean velocity is 0 the degree of
/// turbulence is 0 and the vector invalid. Vectors that end invalid hold what the sums had got to.
///
/// One record is in memory at a time: in the buffer field, where the last one stays (for the dissipation its fluctuations);
/// two passes read the file twice. Shows its progress and yields after each record. What fails is shown in a message box,
/// and nothing is saved; so is an arithmetic error. The save logs as SaveVas does. Returns true where the result
/// was handed to it.
bool ComputeStatistic(Context& context, StatisticKind kind, const std::string& collectionPath,
                      const std::string& outputPath, double viscosity = 0.0);

}  // namespace quiverion
