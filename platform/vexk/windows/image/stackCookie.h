#pragma once

// The stack cookie of an image: a secret word that every function with a buffer on its stack lays
// behind the buffer, and looks at before it returns. Each kernel module links its own.

#include "ntos/types.h"

// What the cookie is in the file. A loader that knows load configurations replaces it; where none
// has, seedStackCookie() does.
constexpr u64 kUnseededCookie = 0x00002B992DDFA232;

// The two upper bytes of a cookie are 0: a text that runs out of its buffer does not get past them.
constexpr u64 kCookieBits = 0x0000FFFFFFFFFFFF;

extern "C" {

// The names are those that the compiler uses.
extern u64 __security_cookie;

// Called with the cookie of a frame, as the compiler's code has taken it out of there, before the
// function returns. Returns with every register as it was if it is the image's. Otherwise the
// machine ends with DRIVER_OVERRAN_STACK_BUFFER, the cookie found, the right one, its complement
// and 0. Any IRQL, any thread.
void __security_check_cookie(u64 found);

// Gives the image a cookie of its own, unless it has one already. For the entries of images, before
// anything else in them runs: a function that is within a frame with a cookie must not call it. Not
// locked.
void seedStackCookie();
}
