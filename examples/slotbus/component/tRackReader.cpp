#include "slotbus/component/tRackReader.h"

#include "slotbus/component/component.h"
#include "slotbus/component/tExcerpt.h"
#include "slotbus/component/tRackLine.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;

namespace nSLOTBUS100 {
namespace {

constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";
constexpr char kUtf16Mark[] = "\xFF\xFE";
constexpr char kUtf16SwappedMark[] = "\xFE\xFF";

tTextSpan dropCarriageReturn(tTextSpan line) {
  size_t const length = line.getLength();
  bool const isThere = length != 0 && line[length - 1] == '\r';
  return line.getFirst(isThere ? length - 1 : length);
}

unsigned int lengthOf(tTextSpan text) {
  return static_cast<unsigned int>(text.getLength());
}

}  // namespace

tRackReader::tRackReader(tRack& target, tTrace& stream, tStatusRecord* keptStatuses)
    : rack(target), trace(stream), record(keptStatuses) {
}

u32 tRackReader::read(tTextSpan text) {
  OXDIAG_REQUIRE_MESSAGE(lineCount == 0, "a reader reads once");
  OXDIAG_BLOCK(kTraceDetail);
  OXDIAG_TRACE(kTraceProgress, put("reading ").put(text.getLength(), 10).put(" bytes"));
  tStatus2 status;
  checkText(text, status);
  if (status.isError()) {
    countFailure({0, text}, status);
  } else {
    readLines(text);
    if (rack.getCount() == 0) traceEmptyRack();
  }
  traceSummary();
  return failureCount == 0 ? 0 : 1;
}

void tRackReader::checkText(tTextSpan text, tStatus2& status) {
  bool const isUtf16 = text.beginsWith(kUtf16Mark) || text.beginsWith(kUtf16SwappedMark);
  if (isUtf16) OXDIAG_SET_STATUS(status, kStatusTextNotPlain);
  if (text.getLength() > kMaxRackTextLength) OXDIAG_SET_STATUS(status, kStatusTextTooLong);
}

void tRackReader::readLines(tTextSpan text) {
  if (text.beginsWith(kUtf8Mark)) text = text.getBehind(sizeof(kUtf8Mark) - 1);
  while (!text.isEmpty()) {
    readLine(dropCarriageReturn(text.takeUntil('\n')));
    OXDIAG_LOOP_INVARIANT(rack.getCount() + failureCount <= lineCount);
  }
}

void tRackReader::readLine(tTextSpan text) {
  ++lineCount;
  tRackLine line(text, lineCount);
  if (!line.isDevice()) return;
  tStatus2 status;
  OXDIAG_BLOCK_STATUS(kTraceDetail, nullptr, &status);
  tDevice device;
  line.read(device, status);
  if (status.isError()) {
    countFailure({lineCount, line.getOffence()}, status);
    return;
  }
  rack.add(device, status);
  if (status.isError()) {
    tDevice const& twin = findTwin(device, status);
    bool const isTold = countFailure({lineCount, line.getText(), twin.lineNumber}, status);
    if (isTold) traceTwin(twin);
    return;
  }
  traceDevice(device);
}

void tRackReader::traceDevice(tDevice const& device) {
  OXDIAG_TRACE(kTraceDevice, put("slot ")
                                 .put(device.slot, 10)
                                 .put(": ")
                                 .put(device.description.getText(), lengthOf(device.description))
                                 .put(" (instance ")
                                 .put(device.instance, 10)
                                 .put(")"));
  traceHardwareIds(device);
}

void tRackReader::traceHardwareIds(tDevice const& device) {
  tTextSpan ids = device.hardwareIds;
  while (!ids.isEmpty()) {
    tTextSpan const id = tDevice::takeHardwareId(ids);
    OXDIAG_TRACE(kTraceDetail, put("hardware id ").put(id.getText(), lengthOf(id)));
  }
}

// Returns whether this one is told.
bool tRackReader::countFailure(tFailurePlace const& place, tStatus2& status) {
  ++failureCount;
  if (failureCount > kMaxTracedFailures) return false;
  describeFailure(place, status);
  traceFailure(place.offence, status);
  keep(status);
  return true;
}

void tRackReader::keep(tStatus2 const& status) {
  if (record != nullptr) record->add(status);
}

void tRackReader::traceFailure(tTextSpan offence, tStatus2 const& status) {
  OXDIAG_TRACE(kTraceFailure, putf("line %u: %s: ", lineCount, describeStatusCode(status.getCode()))
                                  .put(tExcerpt(offence))
                                  .put(status));
}

tDevice const& tRackReader::findTwin(tDevice const& device, tStatus2 const& status) {
  bool const isSlot = status.getCode() == kStatusSlotTaken;
  tDevice const* twin = isSlot ? rack.findSlot(device.slot) : rack.findInstance(device.instance);
  OXDIAG_CHECK(twin != nullptr);
  return *twin;
}

void tRackReader::traceTwin(tDevice const& twin) {
  OXDIAG_TRACE(kTraceFailure,
               putf("line %u came first: ", twin.lineNumber).put(tExcerpt(twin.description)));
}

void tRackReader::traceEmptyRack() {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kWarningEmptyRack);
  OXDIAG_TRACE(kTraceFailure, put(describeStatusCode(status.getCode())).put(status));
  keep(status);
}

void tRackReader::traceSummary() {
  if (failureCount > kMaxTracedFailures) {
    OXDIAG_TRACE(kTraceSummary, putf("%u more failures were counted but not shown",
                                     failureCount - kMaxTracedFailures));
  }
  OXDIAG_TRACE(kTraceSummary, putf("devices: %u, failures: %u, lines: %u", rack.getCount(),
                                   failureCount, lineCount));
}

}  // namespace nSLOTBUS100
