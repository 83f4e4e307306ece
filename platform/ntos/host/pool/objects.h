#pragma once

#include "pool/block.h"

namespace ntoshost {

// Blocks of the non-paged pool for what the executive makes on a caller's behalf: guarded, on the
// list of what is left behind, and found again after they were freed. No fallible calls.

// `size` zeroed bytes; null when memory is exhausted.
void* takeObject(BlockKind kind, size_t size, u32 tag);

// Gives them back. `call` is the kernel call that does.
void releaseObject(void* object, char const* call);

// What is known of an address.
enum class Presence { unknown, live, freed };
Presence lookFor(BlockKind kind, void const* object);

}  // namespace ntoshost
