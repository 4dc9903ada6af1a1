#include "platform/numeric/float_errors.h"

#ifdef __SSE2__
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace quiverion {
namespace {

#ifdef __SSE2__
// Only the flags of the SSE unit, which does all computations. The library functions also handle the x87 flags, which
// takes most of their time.
constexpr unsigned kErrors = _MM_EXCEPT_OVERFLOW | _MM_EXCEPT_DIV_ZERO;

void Clear() {
  _mm_setcsr(_mm_getcsr() & ~kErrors);
}

bool IsRaised() {
  return (_mm_getcsr() & kErrors) != 0;
}
#else
constexpr int kErrors = FE_OVERFLOW | FE_DIVBYZERO;

void Clear() {
  std::feclearexcept(kErrors);
}

bool IsRaised() {
  return std::fetestexcept(kErrors) != 0;
}
#endif

}  // namespace

FloatErrorScope::FloatErrorScope() {
  Clear();
}

FloatErrorScope::~FloatErrorScope() {
  Clear();
}

bool FloatErrorScope::Raised() const {
  return IsRaised();
}

}  // namespace quiverion
