// The driver around the component: reads from its service key where the rack is and how to trace,
// and runs the component. It stays loaded whatever is wrong with the rack.

#include "ntos/driver.h"
#include "ntos/status.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/component/tCaptureBuffer.h"
#include "slotbus/component/tKernelPath.h"
#include "slotbus/component/tNarrowText.h"
#include "slotbus/windows/savedFile.h"
#include "slotbus/windows/tRackFile.h"
#include "slotbus/windows/tRegistryKey.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

namespace {

constexpr wchar_t kSystemKey[] =
    L"\\Registry\\Machine\\Software\\Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t kDefaultRackFile[] = L"\\System32\\drivers\\rack.txt";

// A value holds option words of the library as they are; unknown ones are ignored.
void applyOptions(tRegistryKey const& key, wchar_t const* name, tConfigurable& target) {
  tRegistryText value;
  if (!NT_SUCCESS(key.readText(name, value))) return;
  tNarrowText options(value.get());
  target.configure(options.get());
}

void applyFilter(tRegistryKey const& key, tTrace& trace) {
  tRegistryText filter;
  if (!NT_SUCCESS(key.readText(L"Filter", filter))) return;
  tNarrowText expression(filter.get());
  char option[] = "--filter";
  char* words[] = {option, expression.get()};
  trace.configure(2, words);
}

void runRack(tKernelPath const& path, tTrace& trace, tStatusRecord* record) {
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
  readRackText(file.getText(), file.getLength(), trace, record);
}

// The default rack lies beside the drivers of the system. The registry tells where that is.
void findRack(tRegistryKey const& key, tTrace& trace, tStatusRecord* record) {
  tRegistryText text;
  if (NT_SUCCESS(key.readText(L"RackFile", text))) {
    runRack(tKernelPath(text.get()), trace, record);
    return;
  }
  tRegistryKey(kSystemKey).readText(L"SystemRoot", text);
  runRack(tKernelPath(text.get(), kDefaultRackFile), trace, record);
}

void findRackCaptured(tRegistryKey const& key, tTrace& trace, tStatusRecord* record) {
  tCaptureBuffer buffer;
  if (!buffer.allocate()) return findRack(key, trace, record);
  {
    tCTFTraceDestination capture(buffer.getText(), buffer.getPosition(), buffer.kSize, nullptr);
    trace.setDestination(capture);
    findRack(key, trace, record);
  }
  buffer.show();
}

bool isSet(tRegistryKey const& key, wchar_t const* name) {
  tRegistryText value;
  return NT_SUCCESS(key.readText(name, value)) && value.get()[0] != L'\0';
}

void readRack(tRegistryKey const& key, tTrace& trace, tStatusRecord* record) {
  if (isSet(key, L"Capture")) {
    findRackCaptured(key, trace, record);
  } else {
    findRack(key, trace, record);
  }
}

// Reads the rack, and writes what it has recorded into a file.
void readRackAndSave(tRegistryKey const& key, wchar_t const* file, tTrace& trace) {
  tStatusRecord record;
  tStatus2 status;
  if (!record.allocate()) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  readRack(key, trace, status.isError() ? nullptr : &record);
  saveFile(tKernelPath(file).get(), record.getBytes(), static_cast<u32>(record.getLength()),
           status);
  if (!status.isError()) return;
  OXDIAG_TRACE(kTraceFailure, put("cannot save the statuses, status ")
                                  .put(static_cast<u32>(status.getCode()), 16)
                                  .put(status));
}

void stop(DRIVER_OBJECT*) {
  tTrace& trace = tTrace::getInstance();
  OXDIAG_TRACE(kTraceProgress, put("the driver stops"));
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  tTrace& trace = tTrace::getInstance();
  tRegistryKey const key(registryPath);
  applyOptions(key, L"Assert", tAssertConfiguration::getInstance());
  applyOptions(key, L"Trace", trace);
  applyFilter(key, trace);
  OXDIAG_TRACE(kTraceProgress, put("the driver starts, version ").put(kVersion));
  tRegistryText save;
  if (NT_SUCCESS(key.readText(L"Save", save)) && save.get()[0] != L'\0') {
    readRackAndSave(key, save.get(), trace);
  } else {
    readRack(key, trace, nullptr);
  }
  driver->DriverUnload = stop;
  return STATUS_SUCCESS;
}
