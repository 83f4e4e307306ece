#include "package/windows/packageEntry.h"

#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "package/windows/globalObjects.h"
#include "package/windows/ssMain.h"
#include "vexk/module.h"

namespace nOXDIAG100 {
namespace {

i32 enterAtLoad() {
  i32 status = initialiseGlobals();
  if (status >= 0) status = ssMain(kReasonLoad);
  if (status < 0) terminateGlobals();
  return status;
}

i32 enterAtUnload() {
  i32 const status = ssMain(kReasonUnload);
  terminateGlobals();
  return status;
}

}  // namespace

i32 moduleEntry(u32 reason) {
  switch (reason) {
    case kReasonLoad:
      return enterAtLoad();
    case kReasonUnload:
      return enterAtUnload();
    default:
      return ssMain(reason);
  }
}

}  // namespace nOXDIAG100

NTSTATUS oxdiagkInitialize(UNICODE_STRING const* /*registryPath*/) {
  using namespace nOXDIAG100;
  if (pkgIsVexkInitialized() == 0) return STATUS_DRIVER_UNABLE_TO_LOAD;
  i32 status = initialiseGlobals();
  if (status >= 0) status = moduleEntry(kReasonLoad);
  if (status >= 0) return STATUS_SUCCESS;
  terminateGlobals();
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}

NTSTATUS oxdiagkUnload() {
  using namespace nOXDIAG100;
  moduleEntry(kReasonUnload);
  terminateGlobals();
  return STATUS_SUCCESS;
}
