#pragma once

// The status heap as class-level operators new and delete need it.

#include "ntos/types.h"

namespace nOXDIAG100 {

// A block of at least `size` bytes from the status heap. Null with the reason in `status` when
// there is none, or no heap; at once when `status` is negative on entry.
void* takeStatusMemory(size_t size, i32& status);

// Gives a block back; null does nothing.
void giveStatusMemoryBack(void* block);

}  // namespace nOXDIAG100
