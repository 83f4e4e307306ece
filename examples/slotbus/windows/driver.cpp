// The driver around the component: reads from its service key where the rack is and what to show,
// and runs the component. It stays loaded whatever is wrong with the rack.

#include "ntos/driver.h"
#include "ntos/status.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/component/tKernelPath.h"
#include "slotbus/component/tNarrowText.h"
#include "slotbus/windows/tRackFile.h"
#include "slotbus/windows/tRegistryKey.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

namespace {

constexpr wchar_t kSystemKey[] =
    L"\\Registry\\Machine\\Software\\Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t kDefaultRackFile[] = L"\\System32\\drivers\\rack.txt";

using tValue = wchar_t[tRegistryKey::kMaxTextLength + 1];

void applyFilter(tRegistryKey const& key, tTrace& trace) {
  tValue filter;
  if (!NT_SUCCESS(key.readText(L"Filter", filter))) return;
  tNarrowText expression(filter);
  char option[] = "--filter";
  char* words[] = {option, expression.get()};
  trace.configure(2, words);
}

void runRack(tKernelPath const& path, tTrace& trace) {
  tNarrowText shownPath(path.get());
  tStatus2 status;
  tRackFile file;
  file.read(path.get(), status);
  if (status.isError()) {
    OXDIAG_TRACE(kTraceFailure, put("cannot read the rack file ")
                                    .put(shownPath.get())
                                    .put(", status ")
                                    .put(static_cast<u32>(status.getCode()), 16)
                                    .put(status));
    return;
  }
  OXDIAG_TRACE(kTraceProgress, put("the rack is ").put(shownPath.get()));
  readRackText(file.getText(), file.getLength(), trace);
}

// The default rack lies beside the drivers of the system. The registry tells where that is.
void findRack(tRegistryKey const& key, tTrace& trace) {
  tValue text;
  if (NT_SUCCESS(key.readText(L"RackFile", text))) {
    runRack(tKernelPath(text), trace);
    return;
  }
  tRegistryKey(kSystemKey).readText(L"SystemRoot", text);
  runRack(tKernelPath(text, kDefaultRackFile), trace);
}

void stop(DRIVER_OBJECT*) {
  tTrace& trace = tTrace::getInstance();
  OXDIAG_TRACE(kTraceProgress, put("the driver stops"));
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  tTrace& trace = tTrace::getInstance();
  tRegistryKey const key(registryPath);
  applyFilter(key, trace);
  OXDIAG_TRACE(kTraceProgress, put("the driver starts, version ").put(kVersion));
  findRack(key, trace);
  driver->DriverUnload = stop;
  return STATUS_SUCCESS;
}
