#pragma once

#include "vexk/tSSVersion.h"

// Lets the host's platform layer pass for another version, so that a program can show what a module
// does on a platform that is too old or too new for it. Not locked: before modules are loaded.

namespace vexkhost {

void setPlatformVersion(tSSVersion current, tSSVersion oldestCompatible);

// Back to its own, kVexVersion and kVexOldestCompatible.
void resetPlatformVersion();

}  // namespace vexkhost
