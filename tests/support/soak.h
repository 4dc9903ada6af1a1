#pragma once

#include <cstdlib>

/// Tests that can use hours have two forms: the short one runs in every build, the long one in `./dev soak`, which sets
/// QUIVERION_SOAK.
namespace quiverion::test {

inline bool IsSoak() {
  return std::getenv("QUIVERION_SOAK") != nullptr;
}

/// Time and memory of a sanitized program say nothing about the normal build.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

template <class Value>
Value ShortOrLong(Value shortForm, Value longForm) {
  return IsSoak() ? longForm : shortForm;
}

}  // namespace quiverion::test
