#pragma once

// The executive's crash dump.

#include "ntos/types.h"

namespace ntoshost {

// Where a bug check of this program leaves its dump, a file of the machine; null, as at first, for
// none. The text must stay. The dump is what those who registered for it gave, one behind the
// other: a GUID, the length as eight bytes, the data.
void setDumpFile(char const* path);

// How many bytes one of them may give at most; 64 MiB at first.
void limitDump(u32 bytes);

}  // namespace ntoshost
