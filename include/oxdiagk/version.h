#pragma once

// Which library is installed, and whether it covers what a client was built for.
//
// The installed range runs from the oldest version whose interface the library still honours to its
// own version. A client names the range that it can work with and asks once, at its start:
//
//     constexpr tSSVersion kNewest(2, 0, 0, tSSVersion::kPhaseReleased, 0, 0);   // built for
//     constexpr tSSVersion kOldest(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);   // content with
//
//     i32 status = 0;
//     nOXDIAG100::compareVersion(kNewest, kOldest, status, "slotbus");
//     if (status < 0) return status;   // the debugger shows why
//
// The answer is advice: the library refuses no call because of it.
//
// All three work on any thread at any IRQL at which their arguments may be read, also before the
// library is started. They allocate nothing and take no lock of the library.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "vexk/tSSVersion.h"

namespace nOXDIAG100 {

// The version of this build: the one in the file properties of oxdiagk.dll. `status` is neither
// read nor written.
OXDIAG_API tSSVersion getCurrentVersion(i32& status);

// The oldest version whose interface is still honoured, 1.0.0f7. `status` is neither read nor
// written.
OXDIAG_API tSSVersion getOldestCompatibleVersion(i32& status);

// Checks that the installed range meets [oldestWanted, newestWanted], the newest named first. All
// bounds belong to their range, and ranges that overlap anywhere meet: the check fails when
// `oldestWanted` is newer than the current version or `newestWanted` older than the oldest
// compatible one (tSSVersion::check).
//
// `status`: negative on entry, nothing is checked or printed. A failed check makes it
// kStatusVersionMismatch (-50708) of "vexk/statusCodes.h", in place of a warning too, and prints
// one of
//
//     [oxdiagk] version check failed with status = -50708. Component 'slotbus' desires the range
//     3.0.0f0 - 3.1.0f0 however the installed range is 1.0.0f7 - 2.0.0f1
//
//     [oxdiagk] version check failed with status = -50708. The calling component desires the range
//     3.0.0f0 - 3.1.0f0 however the installed range is 1.0.0f7 - 2.0.0f1
//
// as one line to the debugger, cut by the kernel at 512 bytes. A good check leaves `status` as it
// was, 0 or a warning, and prints nothing.
//
// `component` names the caller in the message; null gives the second form. It is only read.
OXDIAG_API void compareVersion(tSSVersion const& newestWanted, tSSVersion const& oldestWanted,
                               i32& status, char const* component);

}  // namespace nOXDIAG100
