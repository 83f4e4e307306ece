// The library in a program that is its own kernel. On Windows an image that fails to load, or is
// unloaded, is unmapped, and the next load finds a fresh one. A program keeps its image, so what
// unmapping does is done here.

#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "package/windows/packageEntry.h"

namespace {

constinit u32 startCount = 0;

}  // namespace

NTSTATUS oxdiagkInitialize(UNICODE_STRING const* registryPath) {
  NTSTATUS status = STATUS_SUCCESS;
  if (startCount == 0) status = nOXDIAG100::loadModule(registryPath);
  if (status == STATUS_SUCCESS) {
    ++startCount;
  } else {
    nOXDIAG100::forgetModule();
  }
  return status;
}

NTSTATUS oxdiagkUnload() {
  if (startCount == 0 || --startCount != 0) return STATUS_SUCCESS;
  nOXDIAG100::unloadModule();
  nOXDIAG100::forgetModule();
  return STATUS_SUCCESS;
}
