#pragma once

/// QUIVERION_MULTI_TARGET compiles a function for plain x86-64 and for two generations of wider instructions, and
/// chooses at run time. Only if the compiler and the system support it (GCC, not for Windows) and no sanitizer runs
/// before the choice is made. Wider instructions never change bits: contraction is off and no sum is split.
/// QUIVERION_PLAIN_TARGET leaves them out.
///
/// QUIVERION_MULTI_TARGET_CALL also works on Windows, for the functions that take most of the time. It defines void
/// `name` `parameters`, which only calls a function that is always inlined; `arguments` are the names of the
/// parameters.
#if !defined(QUIVERION_PLAIN_TARGET) && defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12 && \
    defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
#define QUIVERION_HAS_TARGETS
#endif

#if defined(QUIVERION_HAS_TARGETS) && !defined(_WIN32)
#define QUIVERION_MULTI_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUIVERION_MULTI_TARGET
#endif

#if defined(QUIVERION_HAS_TARGETS) && defined(_WIN32)
#define QUIVERION_MULTI_TARGET_CALL(name, parameters, arguments, ...)               \
  __attribute__((target("arch=x86-64-v4"))) void name##V4 parameters {              \
    __VA_ARGS__;                                                                    \
  }                                                                                 \
  __attribute__((target("arch=x86-64-v3"))) void name##V3 parameters {              \
    __VA_ARGS__;                                                                    \
  }                                                                                 \
  void name##Plain parameters {                                                     \
    __VA_ARGS__;                                                                    \
  }                                                                                 \
  void name parameters {                                                            \
    static const auto chosen = __builtin_cpu_supports("x86-64-v4")   ? name##V4     \
                               : __builtin_cpu_supports("x86-64-v3") ? name##V3     \
                                                                     : name##Plain; \
    chosen arguments;                                                               \
  }
#else
#define QUIVERION_MULTI_TARGET_CALL(name, parameters, arguments, ...) \
  QUIVERION_MULTI_TARGET void name parameters {                       \
    __VA_ARGS__;                                                      \
  }
#endif

/// Placed before a loop with independent steps, if the compiler cannot see that the arrays do not overlap.
#if defined(__GNUC__) && !defined(__clang__)
#define QUIVERION_INDEPENDENT_STEPS _Pragma("GCC ivdep")
#else
#define QUIVERION_INDEPENDENT_STEPS
#endif

/// For helpers that must be inlined into every such function.
#if defined(__GNUC__)
#define QUIVERION_ALWAYS_INLINE inline __attribute__((always_inline))
#define QUIVERION_NO_INLINE __attribute__((noinline))
#define QUIVERION_LAMBDA_INLINE __attribute__((always_inline))
#else
#define QUIVERION_ALWAYS_INLINE inline
#define QUIVERION_NO_INLINE
#define QUIVERION_LAMBDA_INLINE
#endif
