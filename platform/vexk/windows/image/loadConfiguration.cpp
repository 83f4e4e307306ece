// Control-flow guard: every call through a pointer goes through __guard_dispatch_icall_fptr, and
// the loader of a kernel that has the guard lets that point to a function of its own, which ends
// the machine when the target is none of the functions that this image lists. Under any other
// loader the calls do what they would do without.

#include "loadConfiguration.h"

#include "stackCookie.h"

#pragma section(".00cfg", read)

extern "C" {

// Made by the linker: the address is the value for counts and flags.
extern char const __guard_fids_table[];
extern char const __guard_fids_count[];
extern char const __guard_flags[];
extern char const __guard_iat_table[];
extern char const __guard_iat_count[];
extern char const __guard_longjmp_table[];
extern char const __guard_longjmp_count[];

// With the target in rcx, and every other register full of arguments.
__attribute__((naked)) void permitTarget() {
  __asm__("retq");
}

// With the target in rax.
__attribute__((naked)) void callTarget() {
  __asm__("jmpq *%rax");
}

// The names are those that the compiler uses.
extern void (*const __guard_check_icall_fptr)();
extern void (*const __guard_dispatch_icall_fptr)();
__declspec(allocate(".00cfg")) void (*const __guard_check_icall_fptr)() = &permitTarget;
__declspec(allocate(".00cfg")) void (*const __guard_dispatch_icall_fptr)() = &callTarget;

// The linker looks for that name.
extern tLoadConfiguration const _load_config_used;
tLoadConfiguration const _load_config_used = {
    .size = sizeof(tLoadConfiguration),
    .securityCookie = &__security_cookie,
    .guardCheck = &__guard_check_icall_fptr,
    .guardDispatch = &__guard_dispatch_icall_fptr,
    .guardFunctions = __guard_fids_table,
    .guardFunctionCount = __guard_fids_count,
    .guardFlags = __guard_flags,
    .guardImports = __guard_iat_table,
    .guardImportCount = __guard_iat_count,
    .guardJumps = __guard_longjmp_table,
    .guardJumpCount = __guard_longjmp_count,
};
}
