#pragma once

// Status codes of the library: 32-bit signed, negative an error, positive a warning, zero success.
// The layers beneath have their own, in "vexk/statusCodes.h" and "qelmk/statusCodes.h"; exhausted
// memory is their kStatusOutOfMemory (-50352), an object of the wrong class kStatusClassMismatch.
//
// The codes from 50,000 to 59,999 and from 88,000 to 89,999, with either sign, are kept for the
// library and these layers, those in use and later ones. All others but 0 are the clients': a
// component takes a range of its own, negative numbers for its errors and positive ones for its
// warnings, and keeps the meaning of a number for ever, since statuses are saved. Nobody checks the
// numbers; a status says by its component name whose code it is.

#include "compiler/types.h"
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
