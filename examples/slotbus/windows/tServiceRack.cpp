#include "slotbus/windows/tServiceRack.h"

#include "oxdiagk/tCTFTraceDestination.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/component/tCaptureBuffer.h"
#include "slotbus/component/tNarrowText.h"
#include "slotbus/windows/savedFile.h"
#include "slotbus/windows/tRackFile.h"

using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

namespace {

constexpr wchar_t kSystemKey[] =
    L"\\Registry\\Machine\\Software\\Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t kDefaultRackFile[] = L"\\System32\\drivers\\rack.txt";

bool isSet(tRegistryKey const& key, wchar_t const* name) {
  tRegistryText value;
  return NT_SUCCESS(key.readText(name, value)) && value.get()[0] != L'\0';
}

}  // namespace

tServiceRack::tServiceRack(UNICODE_STRING* registryPath)
    : key(registryPath), trace(tTrace::getInstance()) {
}

void tServiceRack::read(iRackTaker& taker) {
  tRegistryText save;
  if (NT_SUCCESS(key.readText(L"Save", save)) && save.get()[0] != L'\0') {
    readAndSave(save.get(), taker);
  } else {
    readAsAsked(nullptr, taker);
  }
}

void tServiceRack::readAndSave(wchar_t const* file, iRackTaker& taker) {
  tStatusRecord record(isSet(key, L"Modules"));
  tStatus2 status;
  if (!record.allocate()) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  readAsAsked(status.isError() ? nullptr : &record, taker);
  saveFile(tKernelPath(file).get(), record.getBytes(), static_cast<u32>(record.getLength()),
           status);
  if (!status.isError()) return;
  OXDIAG_TRACE(kTraceFailure, put("cannot save the statuses, status ")
                                  .put(static_cast<u32>(status.getCode()), 16)
                                  .put(status));
}

void tServiceRack::readAsAsked(tStatusRecord* record, iRackTaker& taker) {
  if (isSet(key, L"Capture")) {
    readCaptured(record, taker);
  } else {
    find(record, taker);
  }
}

void tServiceRack::readCaptured(tStatusRecord* record, iRackTaker& taker) {
  tCaptureBuffer buffer;
  if (!buffer.allocate()) return find(record, taker);
  {
    tCTFTraceDestination capture(buffer.getText(), buffer.getPosition(), buffer.kSize, nullptr);
    trace.setDestination(capture);
    find(record, taker);
  }
  buffer.show();
}

// The default rack lies beside the drivers of the system. The registry tells where that is.
void tServiceRack::find(tStatusRecord* record, iRackTaker& taker) {
  tRegistryText text;
  if (NT_SUCCESS(key.readText(L"RackFile", text))) {
    readFile(tKernelPath(text.get()), record, taker);
    return;
  }
  tRegistryKey(kSystemKey).readText(L"SystemRoot", text);
  readFile(tKernelPath(text.get(), kDefaultRackFile), record, taker);
}

void tServiceRack::readFile(tKernelPath const& path, tStatusRecord* record, iRackTaker& taker) {
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
  readRackText(file.getText(), file.getLength(), trace, record, &taker);
}
