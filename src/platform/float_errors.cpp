#include "platform/float_errors.h"

#include <cfenv>

namespace quiverion {
namespace {
constexpr int kErrors = FE_OVERFLOW | FE_DIVBYZERO;
}

FloatErrorScope::FloatErrorScope() {
  std::feclearexcept(kErrors);
}

FloatErrorScope::~FloatErrorScope() {
  std::feclearexcept(kErrors);
}

bool FloatErrorScope::Raised() const {
  return std::fetestexcept(kErrors) != 0;
}

}  // namespace quiverion
