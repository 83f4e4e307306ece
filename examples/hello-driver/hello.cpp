// The smallest driver that traces. CMakeLists.txt beside it builds it, and so does one call of the
// compiler, which README.txt of the archive for Windows shows.

#include <ntddk.h>

#include "oxdiagk/oxdiagk.h"

#define OXDIAG_COMPONENT "hello"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0)

using nOXDIAG100::tTrace;

void unloadHello(PDRIVER_OBJECT) {
  OXDIAG_TRACE(100, put("good bye"));
}

extern "C" NTSTATUS DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING) {
  OXDIAG_TRACE(100, put("hello"));
  driver->DriverUnload = unloadHello;
  return STATUS_SUCCESS;
}
