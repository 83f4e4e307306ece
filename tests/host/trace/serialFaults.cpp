// The serial destination when memory is exhausted: the stream always has a destination that works,
// and nothing is left behind.

#include "capturedPrint.h"
#include "keptLines.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "startedModules.h"
#include "vexk/serialSupport.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

void expectThatItWrites(tKeptLines& kept, tOwnTrace& trace) {
  kept.pieces.clear();
  trace.put("still writing").endl();
  EXPECT_EQ(kept.text(), "still writing\n");
}

}  // namespace

TEST(SerialFaults, InstanceIsTriedAgainAfterAFailure) {
  tSerialTraceDestination::destroyInstance();
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(tSerialTraceDestination::getInstance(), nullptr);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  tSerialTraceDestination* const serial = tSerialTraceDestination::getInstance();
  EXPECT_NE(serial, nullptr);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(tSerialTraceDestination::getInstance(), serial);
  ntoshost::clearFaults();
}

TEST(SerialFaults, DestroyedInstanceIsGoneOnce) {
  tSerialTraceDestination::destroyInstance();
  u64 const before = ntoshost::outstandingBlocks();
  EXPECT_NE(tSerialTraceDestination::getInstance(), nullptr);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + 1);
  tSerialTraceDestination::destroyInstance();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  tSerialTraceDestination::destroyInstance();
}

TEST(SerialFaults, OpeningWithoutMemoryHoldsNothingAndKeepsTheRate) {
  tSerialTraceDestination serial;
  u64 const before = ntoshost::outstandingBlocks();
  serial.setDivisor("9600");
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    u32 const opened = serial.open();
    bool const hasFailed = ntoshost::faultsInjected() != 0;
    EXPECT_EQ(opened, hasFailed ? 0u : 1u);
    EXPECT_EQ(ntoshost::outstandingBlocks(), hasFailed ? before : before + 1);
    char settings[40];
    serial.inquire(settings, sizeof(settings), nullptr);
    EXPECT_STREQ(settings,
                 hasFailed ? " --destination serial 115200" : " --destination serial 9600");
  });
  EXPECT_EQ(failures, 1u);
  serial.close();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(SerialFaults, OptionLeavesTheStreamWritingWhateverAllocationFails) {
  tSerialFile const file;
  tKeptLines kept;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    tSerialTraceDestination::destroyInstance();
    u64 const before = ntoshost::outstandingBlocks();
    {
      tOwnTrace trace(kept);
      trace.configure("--destination serial 9600");
      if (trace.getDestination() == &kept) {
        EXPECT_NE(ntoshost::faultsInjected(), 0u);
        expectThatItWrites(kept, trace);
      } else {
        EXPECT_EQ(trace.getDestination(), tSerialTraceDestination::getInstance());
        size_t const sizeBefore = file.content().size();
        trace.put("out").endl();
        EXPECT_EQ(file.content().substr(sizeBefore), "out\n\r");
      }
    }
    tSerialTraceDestination::destroyInstance();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  });
  EXPECT_GE(failures, 5u);  // filter and its term, words, the instance, settings, bus
}

TEST(SerialFaults, FailedOptionTellsSoInTheLinesOfTheFormerDestination) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tSerialTraceDestination* const serial = tSerialTraceDestination::getInstance();
  serial->setDivisor("9600");
  ntoshost::failNth(ntoshost::kFaultMemory, 1);  // the bus
  EXPECT_EQ(trace.setDestination(*serial), &kept);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(kept.text(),
            "Switching trace destination to Serial port with baud rate 9600\n"
            "Trace destination couldn't be opened!\n"
            "Trace destination remains unchanged.\n");
  EXPECT_EQ(kept.events, "close configure open ");
}

TEST(SerialFaults, FormerSerialDestinationComesBackOrTheDebuggerTakesOver) {
  tSerialFile const file;
  tCapturedPrint captured;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    tSerialTraceDestination serial;
    u64 const before = ntoshost::outstandingBlocks();
    {
      tOwnTrace trace(serial);
      serial.open();
      bool const wasOpened = ntoshost::faultsInjected() == 0;
      tKeptLines kept;
      kept.failingOpens = 1;
      iTraceDestination* const former = trace.setDestination(kept);
      EXPECT_EQ(former, trace.getDestination());
      EXPECT_TRUE(former == &serial || former == &tVEXTraceDestination::getInstance());
      EXPECT_TRUE(former == &serial || (wasOpened && ntoshost::faultsInjected() != 0));
      captured.prints.clear();
      size_t const sizeBefore = file.content().size();
      trace.put("somewhere").endl();
      EXPECT_EQ(captured.text() + file.content().substr(sizeBefore),
                former == &serial ? "somewhere\n\r" : "somewhere\n");
    }
    serial.close();
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  });
  EXPECT_EQ(failures, 4u);  // filter and its term, the bus, and the bus again
}

TEST(SerialFaults, DestinationThatGoesLeavesTheModulesStreamWithoutMemoryToo) {
  tSerialFile const file;
  tTrace& trace = tTrace::getInstance();
  tCapturedPrint captured;
  {
    tSerialTraceDestination serial;
    trace.setDestination(serial);
    ASSERT_EQ(trace.getDestination(), &serial);
    ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  }
  ntoshost::clearFaults();
  EXPECT_EQ(trace.getDestination(), &tVEXTraceDestination::getInstance());
  EXPECT_EQ(file.content(), "Switching trace destination to VEX print to debugger\n\r");
}
