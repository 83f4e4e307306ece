#include "package/windows/lifeEvents.h"

#include "package/windows/moduleStrings.h"
#include "package/windows/packageEntry.h"
#include "vexk/eventLog.h"

namespace nOXDIAG100 {
namespace {

// Support and its tools know the place by this text.
constexpr char kComponent[] = "ssKernelExportDriver";
constexpr char kLocation[] = ".\\source\\package\\windows\\clientPkgExportDriver:124 - ";

}  // namespace

void logLifeEvent(u32 reason) {
  pkgModulePackageEventLog(reason, kModuleIdentity.fileName, kModuleIdentity.buildString, "ssMain",
                           &moduleEntry);
}

void logFailedGlobals(i32 status) {
  _vexLogEvent(kComponent, kLocation, kVexEventFailure,
               "the global objects of %s failed with status %d\n", kModuleIdentity.name,
               static_cast<int>(status));
}

void logFailedMain(u32 reason, i32 status) {
  _vexLogEvent(kComponent, kLocation, kVexEventFailure, "ssMain(%d) of %s failed with status %d\n",
               static_cast<int>(reason), kModuleIdentity.name, static_cast<int>(status));
}

}  // namespace nOXDIAG100
