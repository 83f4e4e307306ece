#pragma once

// The integer types of the family, the same width on every target. `i32`, `u32`, `i64` and `u64`
// stand where the documented interface says long, unsigned long, __int64 and unsigned __int64.

#include <stddef.h>
#include <stdint.h>

#include "compiler/integers.h"

static_assert(sizeof(i8) == 1 && sizeof(i16) == 2 && sizeof(i32) == 4 && sizeof(i64) == 8);
static_assert(sizeof(u8) == 1 && sizeof(u16) == 2 && sizeof(u32) == 4 && sizeof(u64) == 8);
static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16 on every target");
static_assert(sizeof(void*) == 8, "64-bit targets only");
