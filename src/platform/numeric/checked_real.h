#pragma once

#include <cmath>

#include "messages/system_error.h"

namespace quiverion {

/// True if an operation on finite numbers has a result that is not finite.
inline bool HasOverflowed(double a, double b, double result) {
  return !std::isfinite(result) && std::isfinite(a) && std::isfinite(b);
}

/// A double whose operations stop at an arithmetic error: an operation on finite numbers whose result is not finite
/// throws SystemError 6 (overflow) or 11 (division by zero). NaN and infinities that come from a file are propagated.
/// The plain loops of a kernel use this type when the computation must stop at the exact point, and double when no
/// error can occur; the bits are the same.
class CheckedReal {
 public:
  CheckedReal(double value = 0.0) : value_(value) {}  // NOLINT(google-explicit-constructor): reads like a number

  double Value() const { return value_; }

  friend CheckedReal operator+(CheckedReal a, CheckedReal b) { return Check(a, b, a.value_ + b.value_); }
  friend CheckedReal operator-(CheckedReal a, CheckedReal b) { return Check(a, b, a.value_ - b.value_); }
  friend CheckedReal operator*(CheckedReal a, CheckedReal b) { return Check(a, b, a.value_ * b.value_); }
  friend CheckedReal operator/(CheckedReal a, CheckedReal b) {
    if (b.value_ == 0.0) throw SystemError(ErrorNumber::divisionByZero);
    return Check(a, b, a.value_ / b.value_);
  }
  friend CheckedReal operator-(CheckedReal a) { return -a.value_; }
  friend bool operator<(CheckedReal a, CheckedReal b) { return a.value_ < b.value_; }
  friend bool operator==(CheckedReal a, CheckedReal b) { return a.value_ == b.value_; }

 private:
  static CheckedReal Check(CheckedReal a, CheckedReal b, double result) {
    if (HasOverflowed(a.value_, b.value_, result)) throw SystemError(ErrorNumber::overflow);
    return result;
  }

  double value_;
};

/// The value of a Real of either kind.
inline double ToDouble(double value) {
  return value;
}
inline double ToDouble(CheckedReal value) {
  return value.Value();
}

}  // namespace quiverion
