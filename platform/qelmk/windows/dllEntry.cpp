// The kernel's doors into the module.

#include "ntos/status.h"
#include "qelmk/module.h"

extern "C" NTSTATUS DllInitialize(UNICODE_STRING* /*registryPath*/) {
  return qelmkInitialize();
}

extern "C" NTSTATUS DllUnload() {
  return qelmkUnload();
}

// The file serves drivers that import it and must never be started as one.
extern "C" NTSTATUS qelmkImageEntry() {
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}
