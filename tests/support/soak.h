#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

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

/// The seed of what a test makes up: always the same in the short form, another one each time in the long form. A test
/// says it when it fails (SCOPED_TRACE); QUIVERION_SEED repeats it.
inline std::uint32_t Seed() {
  static const std::uint32_t seed = [] {
    const char* const given = std::getenv("QUIVERION_SEED");
    if (given != nullptr) return static_cast<std::uint32_t>(std::stoul(given));
    return IsSoak() ? std::random_device()() : 1u;
  }();
  return seed;
}

}  // namespace quiverion::test
