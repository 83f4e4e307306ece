#pragma once

// Status codes of the library: 32-bit signed, negative an error, positive a warning, zero success.
// The layers beneath have their own, in "vexk/statusCodes.h" and "qelmk/statusCodes.h"; exhausted
// memory is their kStatusOutOfMemory (-50352), an object of the wrong class kStatusClassMismatch.

#include "ntos/types.h"
#include "vexk/statusCodes.h"

namespace nOXDIAG100 {

// The status heap has no free block that is large enough.
constexpr i32 kStatusHeapFull = -88601;

// What was given back to the status heap is no block of it, or one that was given back before.
constexpr i32 kStatusHeapBadBlock = -50354;

// A description could not make its list when it was constructed.
constexpr i32 kStatusNoImplementation = -50150;

// There is no item at the index.
constexpr i32 kStatusIndexOutOfRange = -88600;

// A number is no handle of the instance registry, or one that was released.
constexpr i32 kStatusUnknownHandle = -50020;

// Every handle of the instance registry is in use or was released just now.
constexpr i32 kStatusNoFreeHandle = -50150;

}  // namespace nOXDIAG100
