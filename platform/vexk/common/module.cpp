#include "vexk/module.h"

#include "ntos/status.h"
#include "tDispatcherTable.h"
#include "tModuleTable.h"
#include "tSyncTable.h"
#include "vexk/debug.h"

namespace {

constinit u32 startCount = 0;

void initialiseTables() {
  vexSyncTable.initialise();
  vexDispatcherTable.initialise();
  vexModuleTable.initialise();
}

}  // namespace

NTSTATUS vexkInitialize() {
  if (startCount++ == 0) initialiseTables();
  return STATUS_SUCCESS;
}

NTSTATUS vexkUnload() {
  if (startCount == 0 || --startCount != 0) return STATUS_SUCCESS;
  u32 const modules = vexModuleTable.count();
  if (modules != 0) {
    ssprintf("[vexk] %u modules are still registered at unload\n", static_cast<unsigned>(modules));
  }
  u32 const open = vexSyncTable.countHandles();
  if (open != 0)
    ssprintf("[vexk] %u locks are still open at unload\n", static_cast<unsigned>(open));
  return STATUS_SUCCESS;
}

u32 pkgIsVexkInitialized() {
  return startCount != 0 ? 1 : 0;
}
