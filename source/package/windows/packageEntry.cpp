#include "package/windows/packageEntry.h"

#include "config/tConfigTunnel.h"
#include "ntos/status.h"
#include "package/windows/globalObjects.h"
#include "package/windows/lifeEvents.h"
#include "package/windows/moduleRecord.h"
#include "status/statusHeapMain.h"
#include "vexk/debug.h"
#include "vexk/module.h"
#include "vexk/version.h"

namespace nOXDIAG100 {
namespace {

constexpr tSSVersion kOldestPlatform(2, 0, 0, tSSVersion::kPhaseDevelopment, 0, 0);

bool isPlatformGood() {
  if (pkgIsVexkInitialized() == 0) return false;
  if (vexCompareVersion(kVexVersion, kOldestPlatform) >= 0) return true;
  ssprintf("VEX Version %u.%u or later required\n",
           static_cast<unsigned>(kOldestPlatform.getMajor()),
           static_cast<unsigned>(kOldestPlatform.getMinor()));
  return false;
}

i32 buildAndRegister(UNICODE_STRING const* registryPath) {
  i32 status = initialiseGlobals();
  if (status < 0) {
    logFailedGlobals(status);
    return status;
  }
  fillModuleRecord(registryPath);
  libRegisterModuleWithVEX(moduleRecord.info, status);
  return status;
}

// The module main: the status heap is made at the load and destroyed at the unload; every other
// reason does nothing.
i32 ssMain(u32 reason) {
  return statusHeapMain(reason);
}

i32 enterAtLoad() {
  i32 status = initialiseGlobals();
  if (status >= 0) status = ssMain(kModuleLoad);
  if (status < 0) terminateGlobals();
  return status;
}

i32 enterAtUnload() {
  i32 const status = ssMain(kModuleUnload);
  terminateGlobals();
  return status;
}

}  // namespace

i32 moduleEntry(u32 reason) {
  switch (reason) {
    case kModuleLoad:
      return enterAtLoad();
    case kModuleUnload:
      return enterAtUnload();
    default:
      return ssMain(reason);
  }
}

NTSTATUS loadModule(UNICODE_STRING const* registryPath) {
  if (!isPlatformGood()) return STATUS_DRIVER_UNABLE_TO_LOAD;
  logLifeEvent(kModuleLoad);
  if (buildAndRegister(registryPath) >= 0) return STATUS_SUCCESS;
  terminateGlobals();
  return STATUS_DRIVER_UNABLE_TO_LOAD;
}

NTSTATUS unloadModule() {
  i32 status = 0;
  tConfigTunnel::getInstance().endRequests();
  libUnregisterModuleWithVEX(moduleRecord.info, status);
  terminateGlobals();
  logLifeEvent(kModuleUnload);
  return STATUS_SUCCESS;
}

void forgetModule() {
  if (forgetGlobals()) clearModuleRecord();
}

}  // namespace nOXDIAG100
