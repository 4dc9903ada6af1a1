// What the compiler's stack protector asks of the program. The compiler's own library for it (libssp) draws its number
// with a service of the system whose start takes longer than that of the program.
#include "platform/windows/paths.h"
// Behind the header that includes windows.h.
#include <ntsecapi.h>

#include <cstdint>

extern "C" {

void* __stack_chk_guard = nullptr;

// Ends the process at once; the code for __fastfail says why.
[[noreturn]] static void FailFast(int code) {
  asm volatile("int $0x29" : : "c"(code));
  __builtin_unreachable();
}

// A function has written beyond its frame.
[[noreturn]] void __stack_chk_fail() {
  FailFast(2);  // FAST_FAIL_STACK_COOKIE_CHECK_FAILURE
}

// A function of the C library was to write beyond its target.
[[noreturn]] void __chk_fail() {
  FailFast(5);  // FAST_FAIL_INVALID_ARG
}

// Before every other constructor; it must not be protected by what it changes.
__attribute__((constructor(101), no_stack_protector, used)) static void DrawStackGuard() {
  constexpr std::uintptr_t endOfText = 0xFF;  // in the lowest byte a text that is too long cannot write 0
  std::uintptr_t number = 0;
  if (!RtlGenRandom(&number, sizeof number)) number = ::GetTickCount64() * 0x9E3779B97F4A7C15u;
  __stack_chk_guard = reinterpret_cast<void*>(number & ~endOfText);
}

}  // extern "C"
