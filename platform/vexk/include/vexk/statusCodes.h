#pragma once

// Status codes of the platform layer: 32-bit signed, negative an error, positive a warning, zero
// success. Exhausted memory is kStatusOutOfMemory (-50352) of "stl/memory.h".

#include "compiler/types.h"
#include "stl/memory.h"

// An argument lies outside what the operation documents: an unknown lock kind, an over-long name,
// a pointer that is not an open lock.
constexpr i32 kStatusBadArgument = -50005;

// The platform layer has not been started, or has been stopped.
constexpr i32 kStatusNotInitialized = -50701;

// A lock was not free within the time given.
constexpr i32 kStatusSyncTimeout = -50702;

// A lock was to be released by a thread that does not own it.
constexpr i32 kStatusSyncNotOwner = -50703;

// A lock was to be closed while a thread owns it.
constexpr i32 kStatusSyncInUse = -50704;

// A lock was acquired more than kSyncMaximumDepth times by one thread.
constexpr i32 kStatusSyncTooDeep = -50705;

// A lock was to be waited for at an IRQL where no thread may wait.
constexpr i32 kStatusSyncIrqlTooHigh = -50706;

// The kernel refused a wait for a reason of its own.
constexpr i32 kStatusSyncFailed = -50707;

// The version that a client wants and the versions that are installed do not meet.
constexpr i32 kStatusVersionMismatch = -50708;

// No dispatcher of a registered module has the name that a request is for.
constexpr i32 kStatusNoDispatcher = -50709;
