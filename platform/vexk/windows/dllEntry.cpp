// The kernel's doors into the module.

#include "ntos/status.h"
#include "tRequestDevice.h"
#include "vexk/module.h"

extern "C" NTSTATUS DllInitialize(UNICODE_STRING* /*registryPath*/) {
  NTSTATUS const status = vexkInitialize();
  if (NT_SUCCESS(status)) vexRequestDevice.open();
  return status;
}

extern "C" NTSTATUS DllUnload() {
  vexRequestDevice.close();
  return vexkUnload();
}

// The file serves drivers that import it and must never be started as one.
extern "C" NTSTATUS vexkImageEntry() {
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}
