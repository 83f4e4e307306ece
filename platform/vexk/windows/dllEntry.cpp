// The kernel's doors into the module.

#include "ntos/status.h"
#include "vexk/module.h"

extern "C" NTSTATUS DllInitialize(UNICODE_STRING* /*registryPath*/) {
  return vexkInitialize();
}

extern "C" NTSTATUS DllUnload() {
  return vexkUnload();
}

// The file serves drivers that import it and must never be started as one.
extern "C" NTSTATUS vexkImageEntry() {
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}
