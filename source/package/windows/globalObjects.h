#pragma once

// Construction and destruction of the library's global objects. No constructor of the library runs
// by itself: globals are constant-initialised storage that the initialiser table builds, each entry
// pushing its destructor onto the terminator list.
//
// The first two calls are counted, not locked, and run at PASSIVE_LEVEL in the loading thread. The
// count stays at 1 after the last termination, so an image builds its globals once in its life,
// unless it is made to forget that.

#include "ntos/types.h"

namespace nOXDIAG100 {

// Builds every global object in table order, or only counts when that was done before. Returns 0,
// -50352 when an entry could not allocate, or the negative status of a class registration; what was
// built before it is undone by terminateGlobals().
i32 initialiseGlobals();

// Undoes one initialiseGlobals(): the last one destroys every object, last built first.
void terminateGlobals();

// Lets the next initialiseGlobals() build everything, as in an image that is mapped anew. Returns
// whether it does: not while there is something to destroy.
bool forgetGlobals();

}  // namespace nOXDIAG100
