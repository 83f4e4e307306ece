#include "qelmk/module.h"

#include "ntos/status.h"
#include "vexk/module.h"

namespace {

constinit u32 startCount = 0;

}  // namespace

NTSTATUS qelmkInitialize() {
  if (pkgIsVexkInitialized() == 0) return STATUS_DRIVER_UNABLE_TO_LOAD;
  ++startCount;
  return STATUS_SUCCESS;
}

NTSTATUS qelmkUnload() {
  if (startCount != 0) --startCount;
  return STATUS_SUCCESS;
}

u32 pkgIsQelmkInitialized() {
  return startCount != 0 ? 1 : 0;
}
