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

// Whether a block of PagedPool starts here.
bool isPagedBlock(void const* data);

// Stops the program unless the answer to a request is a caller's block of PagedPool. `what` is the
// answer. Returns the size of the block.
size_t requireAnswer(void const* answer, char const* what);

// Frees such an answer.
void freeAnswer(void* answer, char const* what);

}  // namespace ntoshost
