#include "oxdiagk/package.h"

#include "package/windows/lifeEvents.h"
#include "package/windows/moduleRecord.h"
#include "package/windows/wdm/tParentList.h"

using namespace nOXDIAG100;

tModulePackage* pkgSetLegacyWrapperLoadState(u32 state) {
  tModulePackage& package = moduleRecord.package;
  package.legacyWrapperState = state;
  if (state == 0) {
    package.legacyWrapperWords[0] = 0;
    package.legacyWrapperWords[1] = 0;
  }
  return &package;
}

tModuleGUID const* pkgSetWDMWrapperLoadStateAndGetGUID(u32 state) {
  if (state != 0) wdmParents.initialise();
  moduleRecord.package.wdmWrapperState = state;
  return &moduleRecord.package.identity->guid;
}

i32 pkgWDMWrapperCallSSMain(u32 reason) {
  logLifeEvent(reason);
  i32 const status = moduleRecord.info.entry(reason);
  if (status < 0) logFailedMain(reason, status);
  return status;
}
