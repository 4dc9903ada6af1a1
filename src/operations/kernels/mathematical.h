#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

/// Mathematical functions of the operations.
namespace quiverion {

/// sqrt(x² + y²), evaluated exactly so, because the bits of the results depend on it.
inline double VectorLength(double x, double y) {
  return std::sqrt(x * x + y * y);
}

/// Arc cosine in radians: 0 for 1, the literal 3.14159265359 for -1, otherwise atan(-x / sqrt(1 - x²)) + 2 atan(1).
/// Throws SystemError 5 for |x| > 1; NaN gives NaN.
double ArcCos(double x);

/// Element k of row n of Pascal's triangle. Throws SystemError 5 if k > n, and 9 for negative arguments.
double BinomialCoefficient(std::int32_t n, std::int32_t k);

/// Row n of Pascal's triangle, elements 0..n. Throws SystemError 9 for a negative n.
std::vector<double> PascalRow(std::int32_t n);

}  // namespace quiverion
