#include "slotbus/host/tProgramRack.h"

#include "oxdiagk/tCTFTraceDestination.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/component/tCaptureBuffer.h"
#include "slotbus/host/writeFile.h"

using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

tProgramRack::tProgramRack(tDemoOptions const& demoOptions, tRackFile const& rackFile,
                           tTrace& stream)
    : options(demoOptions), file(rackFile), trace(stream) {
}

void tProgramRack::read(iRackTaker& taker) {
  if (options.save) {
    readAndSave(taker);
  } else {
    readAsAsked(nullptr, taker);
  }
}

void tProgramRack::readAndSave(iRackTaker& taker) {
  tStatusRecord record(options.savesModules);
  if (!record.allocate()) return fail("there is no memory for the statuses");
  readAsAsked(&record, taker);
  std::string reason;
  if (!writeFile(*options.save, record.getBytes(), record.getLength(), reason)) fail(reason);
}

void tProgramRack::readAsAsked(tStatusRecord* record, iRackTaker& taker) {
  if (options.captures) {
    readCaptured(record, taker);
  } else {
    readText(record, taker);
  }
}

void tProgramRack::readCaptured(tStatusRecord* record, iRackTaker& taker) {
  tCaptureBuffer buffer;
  if (!buffer.allocate()) return readText(record, taker);
  {
    tCTFTraceDestination capture(buffer.getText(), buffer.getPosition(), buffer.kSize, nullptr);
    trace.setDestination(capture);
    readText(record, taker);
  }
  buffer.show();
}

void tProgramRack::readText(tStatusRecord* record, iRackTaker& taker) {
  OXDIAG_TRACE(kTraceProgress, put("the rack is ").put(file.getName().c_str()));
  u32 const isBad =
      readRackText(file.getText().data(), file.getText().size(), trace, record, &taker);
  result = isBad == 0 ? kExitGood : kExitBadRack;
}

void tProgramRack::fail(std::string const& sentence) {
  problem = sentence;
  result = kExitNoOutput;
}
