#include <unistd.h>

#include "file/call.h"
#include "irqlCheck.h"
#include "ntos/objectAttributes.h"
#include "ntoshost/violation.h"

NTSTATUS ZwClose(HANDLE handle) {
  using namespace ntoshost;
  requireIrqlAtMost(PASSIVE_LEVEL, "ZwClose");
  Call call(FileCallKind::Close);
  call->handle = handle;
  OpenFile* const file = g_files.handles.find(handle);
  if (file == nullptr) {
    violation("ZwClose was given %p, which was never opened or is closed already.", handle);
  }
  if (file->object != nullptr) {
    ObfDereferenceObject(file->object);
  } else {
    close(file->descriptor);
  }
  g_files.handles.remove(file);
  return call.finish(STATUS_SUCCESS);
}
