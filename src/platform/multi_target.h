#pragma once

/// QUIVERION_MULTI_TARGET compiles a function for plain x86-64 and for two generations of wider instructions, and
/// chooses at run time. Only where the compiler can (GCC) and where no sanitizer runs before the choice is made. Wider
/// instructions never change bits: contraction is off and no sum is split. QUIVERION_PLAIN_TARGET leaves them out.
#if !defined(QUIVERION_PLAIN_TARGET) && defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12 && \
    defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
#define QUIVERION_MULTI_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUIVERION_MULTI_TARGET
#endif

/// Before a loop whose steps are independent although the compiler cannot see that nothing overlaps.
#if defined(__GNUC__) && !defined(__clang__)
#define QUIVERION_INDEPENDENT_STEPS _Pragma("GCC ivdep")
#else
#define QUIVERION_INDEPENDENT_STEPS
#endif

/// A helper that must become part of every such function.
#if defined(__GNUC__)
#define QUIVERION_ALWAYS_INLINE inline __attribute__((always_inline))
#define QUIVERION_NO_INLINE __attribute__((noinline))
#define QUIVERION_LAMBDA_INLINE __attribute__((always_inline))
#else
#define QUIVERION_ALWAYS_INLINE inline
#define QUIVERION_NO_INLINE
#define QUIVERION_LAMBDA_INLINE
#endif
