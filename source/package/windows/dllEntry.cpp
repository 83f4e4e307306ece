// The kernel's doors into the module.

#include "ntos/status.h"
#include "package/windows/packageEntry.h"

extern "C" NTSTATUS DllInitialize(UNICODE_STRING* registryPath) {
  return nOXDIAG100::loadModule(registryPath);
}

extern "C" NTSTATUS DllUnload() {
  return nOXDIAG100::unloadModule();
}

// The file serves drivers that import it and must never be started as one.
extern "C" NTSTATUS oxdiagkImageEntry() {
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}
