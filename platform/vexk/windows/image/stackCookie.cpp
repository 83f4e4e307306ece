#include "stackCookie.h"

#include "ntos/bugCheck.h"
#include "vexk/cpu.h"

// None of these functions has a cookie of its own.

constinit u64 __security_cookie = kUnseededCookie;

extern "C" [[noreturn]] __attribute__((used, no_stack_protector)) void endOverrun(u64 found) {
  u64 const wanted = __security_cookie;
  KeBugCheckEx(DRIVER_OVERRAN_STACK_BUFFER, found, wanted, ~wanted, 0);
}

// The caller's result is in the registers, so it is written by hand. At a jump the caller stays the
// one to return to, which a call stack then shows.
__attribute__((naked)) void __security_check_cookie(u64 /*found*/) {
  __asm__(
      "cmpq __security_cookie(%rip), %rcx\n\t"
      "jne endOverrun\n\t"
      "retq");
}

namespace {

// Neighbours among seeds get far from each other.
u64 mix(u64 value) {
  value = (value ^ value >> 31) * 0x7FB5D329728EA185;
  value = (value ^ value >> 27) * 0x81DADEF4BC2DD44D;
  return value ^ value >> 33;
}

}  // namespace

// What a stranger knows least: the time to the cycle, where the image is mapped, where the stack
// is.
__attribute__((no_stack_protector)) void seedStackCookie() {
  if (__security_cookie != kUnseededCookie) return;
  u64 const image = reinterpret_cast<u64>(&__security_cookie);
  u64 const stack = reinterpret_cast<u64>(__builtin_frame_address(0));
  u64 const seed = mix(vexReadTimeStampCounter() ^ mix(image) ^ stack << 16) & kCookieBits;
  bool const isBad = seed == 0 || seed == kUnseededCookie;
  __security_cookie = isBad ? kUnseededCookie + 1 : seed;
}
