#pragma once

#include "ntos/types.h"

namespace ntoshost {

// Blocks of the pool that drivers hand over. The plain executive, whose pool knows nothing of its
// blocks, takes them for what they should be.

// Whether a block of PagedPool starts here; never in the plain executive.
bool isPagedBlock(void const* data);

// Stops the program unless the answer to a request is a caller's block of PagedPool. `what` is the
// answer. Returns the size of the block, in the plain executive that of the memory it has.
size_t requireAnswer(void const* answer, char const* what);

// Frees such an answer.
void freeAnswer(void* answer, char const* what);

}  // namespace ntoshost
