#pragma once

#include "platform/numeric/multi_target.h"

namespace quiverion {

/// Watches the floating-point status while it lives. A fast kernel runs inside such a scope; where `Raised`
/// says true the plain loops must decide whether and where the computation stops. The flags can be raised
/// without an arithmetic error (by a discarded lane), never the other way round: an operation on finite numbers
/// whose result is not finite raises one of them, except 0 / 0, which a kernel that may divide by zero looks for
/// itself. Invalid operations on NaN and infinities that come from a file are no errors and do not count.
class FloatErrorScope {
 public:
  FloatErrorScope();
  ~FloatErrorScope();
  FloatErrorScope(const FloatErrorScope&) = delete;
  FloatErrorScope& operator=(const FloatErrorScope&) = delete;

  /// Overflow or division by zero since the scope began.
  bool Raised() const;
};

/// A call that the compiler cannot mix with what stands around it.
template <class Compute>
QUIVERION_NO_INLINE void CallApart(Compute& compute) {
  compute();
}

/// Runs `compute`, a fast kernel that writes scratch memory only, and tells whether it has raised a flag.
template <class Compute>
bool RaisesFloatError(Compute compute) {
  const FloatErrorScope errors;
  CallApart(compute);
  return errors.Raised();
}

}  // namespace quiverion
