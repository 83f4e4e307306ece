#include "qelmk/module.h"

#include "ntos/status.h"
#include "qelmk/iCloneableExternalizable.h"
#include "tClassRegistry.h"
#include "vexk/module.h"

namespace {

constinit u32 startCount = 0;

// The framework's own classes. Nobody can have taken their names before.
void registerOwnClasses() {
  i32 status = 0;
  nQELM100::iCloneable::___registerClass(status);
  nQELM100::iExternalizable::___registerClass(status);
  nQELM100::iCloneableExternalizable::___registerClass(status);
}

void unregisterOwnClasses() {
  nQELM100::iCloneableExternalizable::___unregisterClass();
  nQELM100::iExternalizable::___unregisterClass();
  nQELM100::iCloneable::___unregisterClass();
}

}  // namespace

NTSTATUS qelmkInitialize() {
  if (pkgIsVexkInitialized() == 0) return STATUS_DRIVER_UNABLE_TO_LOAD;
  if (startCount++ == 0) {
    nQELM100::qelmkClasses.initialise();
    registerOwnClasses();
  }
  return STATUS_SUCCESS;
}

NTSTATUS qelmkUnload() {
  if (startCount == 0) return STATUS_SUCCESS;
  if (startCount == 1) unregisterOwnClasses();
  --startCount;
  return STATUS_SUCCESS;
}

u32 pkgIsQelmkInitialized() {
  return startCount != 0 ? 1 : 0;
}
