#pragma once

#include <span>
#include <string>
#include <vector>

#include "picture/palette.h"

/// Round numbers and robust extremes.
namespace quiverion {

/// The value that `part` (0 to 1) of the values do not exceed: the one at place floor(part * (n - 1)) of n sorted
/// values, so that a single outlier among few never counts. 0 if there are none. Changes the order of the values.
double Quantile(std::vector<double>& values, double part);

/// The greatest 1, 2 or 5 times a power of ten that is at most `value` (finite, above 0).
double RoundDown125(double value);

/// Ticks at multiples of 1, 2 or 5 times a power of ten, within the limits.
struct Ticks {
  std::vector<double> values;  ///< ascending; at most about `atMost`
  double step = 0.0;
};
Ticks TicksBetween(double lower, double upper, int atMost);

/// A value of a scale with ticks of this distance, with a decimal comma: as many places as the step needs, an exponent
/// for very large and very small ones.
std::string TickText(double value, double step);

/// At most `digits` significant digits, with a decimal comma; "–" if the value is not finite.
std::string NumberText(double value, int digits);

/// Limits for a colour bar from the 1 % and 99 % quantiles of its values. Signed quantities are symmetric about 0,
/// others begin at 0 if they have no negative value. Never empty: equal ends are moved apart.
Limits RobustLimits(std::vector<double>& values, bool isSigned);

}  // namespace quiverion
