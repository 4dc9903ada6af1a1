#pragma once

#include <cstdlib>

/// Tests that are worth hours have two lengths: the short one of every build, and the long one of `./dev soak`, which
/// sets QUIVERION_SOAK.
namespace quiverion::test {

inline bool IsSoak() {
  return std::getenv("QUIVERION_SOAK") != nullptr;
}

/// Time and memory of a sanitized program say nothing about the one that is used.
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
