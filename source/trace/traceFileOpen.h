#pragma once

// How the file destination opens its file: the drive's root first, then the file relative to it.

#include "ntos/types.h"

namespace nOXDIAG100 {

// The two handles of an open file; both null when nothing is open.
struct tTraceFileHandles {
  HANDLE directory;
  HANDLE file;
};

// Opens the file that `name` says, for appending; with `overwrites` it is emptied, unless that is a
// sharing violation. `name` has a drive letter, a colon, one separator and the path on the drive,
// together below 128 bytes; other names are refused without a call of the kernel. Returns null
// handles on failure. PASSIVE_LEVEL.
tTraceFileHandles openTraceFile(char const* name, bool overwrites);

}  // namespace nOXDIAG100
