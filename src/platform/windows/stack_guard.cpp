// What the stack protector of the compiler needs. The compiler's own library for it (libssp) gets its random number
// from a system service that takes longer to start than the program.
#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <ntsecapi.h>

#include <cstdint>

extern "C" {

void* __stack_chk_guard = nullptr;

// Ends the process at once; `code` is the reason code of __fastfail.
[[noreturn]] static void FailFast(int code) {
  asm volatile("int $0x29" : : "c"(code));
  __builtin_unreachable();
}

// A function has written beyond its frame.
[[noreturn]] void __stack_chk_fail() {
  FailFast(2);  // FAST_FAIL_STACK_COOKIE_CHECK_FAILURE
}

// A function of the C library was about to write beyond its target.
[[noreturn]] void __chk_fail() {
  FailFast(5);  // FAST_FAIL_INVALID_ARG
}

// Runs before every other constructor. It changes the guard, so it must not be protected by it.
__attribute__((constructor(101), no_stack_protector, used)) static void DrawStackGuard() {
  constexpr std::uintptr_t endOfText = 0xFF;  // lowest byte 0: a text that is too long cannot contain it
  std::uintptr_t number = 0;
  if (!RtlGenRandom(&number, sizeof number)) number = ::GetTickCount64() * 0x9E3779B97F4A7C15u;
  __stack_chk_guard = reinterpret_cast<void*>(number & ~endOfText);
}

}  // extern "C"
