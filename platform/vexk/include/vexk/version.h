#pragma once

// The version of this platform's interface. It changes when the interface changes. The version of a
// build, which the file properties show, is another number.

#include "vexk/tSSVersion.h"

// What a client that includes this header is built against.
constexpr tSSVersion kVexVersion(2, 0, 0, tSSVersion::kPhaseReleased, 0, 0);

// Clients that were built against an older version do not run on this one.
constexpr tSSVersion kVexOldestCompatible(2, 0, 0, tSSVersion::kPhaseDevelopment, 0, 0);

// Whether the platform that runs is one that a client can use: one it was built against, or at
// least `oldestWanted` and compatible with what it was built against. Returns 0, or
// kStatusVersionMismatch. Any IRQL, before vexkInitialize too.
//
//     constexpr tSSVersion kOldest(2, 0, 0, tSSVersion::kPhaseDevelopment, 0, 0);
//     if (vexCompareVersion(kVexVersion, kOldest) < 0) return STATUS_DRIVER_UNABLE_TO_LOAD;
VEX_API i32 vexCompareVersion(tSSVersion const& builtAgainst, tSSVersion const& oldestWanted);
