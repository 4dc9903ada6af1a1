#pragma once

#include "platform/numeric/multi_target.h"

namespace quiverion {

/// Watches the floating-point status while it lives. A fast kernel runs inside such a scope; if `Raised` returns true,
/// the plain loops must decide whether and where the computation stops. A flag may be raised without an arithmetic
/// error (by a discarded lane), but there is no error without a flag: an operation on finite numbers whose result is
/// not finite raises one. The exception is 0 / 0, for which a kernel that may divide by zero must check itself. Invalid
/// operations on NaN and infinities that come from a file are not errors and do not count.
class FloatErrorScope {
 public:
  FloatErrorScope();
  ~FloatErrorScope();
  FloatErrorScope(const FloatErrorScope&) = delete;
  FloatErrorScope& operator=(const FloatErrorScope&) = delete;

  /// Overflow or division by zero since the scope began.
  bool Raised() const;
};

/// A call that the compiler cannot reorder with the code around it.
template <class Compute>
QUIVERION_NO_INLINE void CallApart(Compute& compute) {
  compute();
}

/// Runs `compute`, a fast kernel that writes scratch memory only, and returns whether it has raised a flag.
template <class Compute>
bool RaisesFloatError(Compute compute) {
  const FloatErrorScope errors;
  CallApart(compute);
  return errors.Raised();
}

}  // namespace quiverion
