#include "operations/kernels/mathematical.h"

#include "messages/system_error.h"

namespace quiverion {
namespace {

// Computed in higher precision and rounded, because the double versions of the systems' libraries differ in the last
// bit.
double ArcTan(double x) {
  return static_cast<double>(std::atan(static_cast<long double>(x)));
}

}  // namespace

double ArcCos(double x) {
  if (std::fabs(x) > 1.0) throw SystemError::Saying(ErrorNumber::invalidCall, "Unzulässiges Argument in ArcCos");
  if (x == 1.0) return 0.0;
  if (x == -1.0) return 3.14159265359;
  return ArcTan(-x / std::sqrt(1.0 - x * x)) + 2.0 * ArcTan(1.0);
}

double BinomialCoefficient(std::int32_t n, std::int32_t k) {
  if (k > n) throw SystemError::Saying(ErrorNumber::invalidCall, "Ungültiger Binomial-Koeffizient!");
  if (k < 0) throw SystemError(ErrorNumber::indexOutOfRange);
  return PascalRow(n)[static_cast<std::size_t>(k)];
}

std::vector<double> PascalRow(std::int32_t n) {
  if (n < 0) throw SystemError(ErrorNumber::indexOutOfRange);
  std::vector<double> row = {1.0};
  for (std::int32_t length = 1; length <= n; ++length) {
    row.push_back(1.0);
    for (std::size_t m = row.size() - 2; m > 0; --m) row[m] = row[m - 1] + row[m];
  }
  return row;
}

}  // namespace quiverion
