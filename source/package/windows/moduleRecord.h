#pragma once

// What the module hands to the platform when it is registered.

#include "ntos/types.h"
#include "vexk/moduleInfo.h"

namespace nOXDIAG100 {

struct tModuleRecord {
  _tLibModuleInfo info;
  tModulePackage package;
};

// The one of the module. Its name and registry path are empty until fillModuleRecord().
extern tModuleRecord moduleRecord;

// Copies the module's name, and the registry path of DllInitialize, cut at 260 characters; null is
// an empty path. PASSIVE_LEVEL.
void fillModuleRecord(UNICODE_STRING const* registryPath);

// Makes the record as it was before fillModuleRecord, with every state of a wrapper at 0.
void clearModuleRecord();

}  // namespace nOXDIAG100
