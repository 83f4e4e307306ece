#pragma once

#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "slotbus/component/failureDescription.h"
#include "slotbus/component/tRack.h"
#include "slotbus/component/tStatusRecord.h"
#include "slotbus/component/tTextSpan.h"

namespace nSLOTBUS100 {

// Reads the whole text of a rack into a tRack and traces what it finds on a stream, at the levels
// of component.h. A line that is wrong is told about (its number, the reason, the text, the status
// in full) and skipped; the lines after it are read as usual. The status has a description of what
// would have been right; with a record, it is kept there.
//
//     tRackReader reader(*rack, tTrace::getInstance());
//     u32 const result = reader.read(tTextSpan(text, length));
//
// Any bytes are safe to read. Line ends are LF or CR LF, the last line needs none, and a UTF-8
// byte order mark at the start is skipped. Not locked. IRQL <= APC_LEVEL.
class tRackReader {
 public:
  // Failures beyond this number are counted but neither traced nor kept, so that a file that is no
  // rack at all does not flood the debugger.
  static constexpr u32 kMaxTracedFailures = 50;

  // All objects must outlive the reader. `keptStatuses` may be null.
  tRackReader(tRack& target, nOXDIAG100::tTrace& stream, tStatusRecord* keptStatuses = nullptr);

  // Returns 0 when every line was good, 1 when something was wrong. An empty rack is good (and a
  // warning). `text` must outlive the rack. Call once.
  u32 read(tTextSpan text);

  u32 getLineCount() const { return lineCount; }
  u32 getFailureCount() const { return failureCount; }

 private:
  void checkText(tTextSpan text, nOXDIAG100::tStatus2& status);
  void readLines(tTextSpan text);
  void readLine(tTextSpan text);
  void traceDevice(tDevice const& device);
  void traceHardwareIds(tDevice const& device);
  bool countFailure(tFailurePlace const& place, nOXDIAG100::tStatus2& status);
  void keep(nOXDIAG100::tStatus2 const& status);
  void traceFailure(tTextSpan offence, nOXDIAG100::tStatus2 const& status);
  tDevice const& findTwin(tDevice const& device, nOXDIAG100::tStatus2 const& status);
  void traceTwin(tDevice const& twin);
  void traceEmptyRack();
  void traceSummary();

  tRack& rack;
  nOXDIAG100::tTrace& trace;
  tStatusRecord* record;
  u32 lineCount = 0;
  u32 failureCount = 0;
};

}  // namespace nSLOTBUS100
