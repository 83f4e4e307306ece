#pragma once

#include "ntos/pool.h"
#include "ntos/types.h"

constexpr u32 kTag = ntosPoolTag("test");  // of the blocks

// Writes one byte that may not be written. The address sanitizer would stop the program there; what
// is tested is what the executive itself says later.
__attribute__((no_sanitize("address"), noinline)) inline void scribble(void* block, long offset,
                                                                       u8 value = 0x5E) {
  static_cast<u8 volatile*>(block)[offset] = value;
}
