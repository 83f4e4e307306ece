// Tracing above PASSIVE_LEVEL. The executive stops the program when a call is made at an IRQL that
// its contract forbids, so these tests also show that no such call is made.

#include "keptLines.h"
#include "oxdiagk/kernelValues.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "startedModules.h"
#include "tRaisedIrql.h"
#include "vexk/serialSupport.h"

namespace {

using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;

void putLine(tTrace& trace, char const* text) {
  trace.putPrefix("irql", tSSVersion(), 1, "a/file", 100, tTrace::kTraceLine);
  trace.put(text).put(5, 2).put(&trace, 4, 4).put("end").endl();
}

}  // namespace

TEST(TraceIrql, LinesAreWrittenAtDispatchLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--compver on --threadid on --timestamp on --timedelta on --verbosity on");
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    putLine(trace, "high ");
  }
  ASSERT_EQ(kept.pieces.size(), 2u);
  EXPECT_NE(kept.pieces[0].find("] high 2#101"), std::string::npos) << kept.pieces[0];
  EXPECT_EQ(kept.pieces[1], "end\n");
}

TEST(TraceIrql, FormattedTextIsWrittenAtDispatchLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    trace.putf("%d %s %ls", 5, "narrow", L"wide").endl();
  }
  EXPECT_EQ(kept.text(), "5 narrow wide\n");
}

TEST(TraceIrql, ValuesOfTheKernelAreWrittenAtEveryLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  UNICODE_STRING const name = {8, 8, const_cast<wchar_t*>(L"rack")};
  {
    tRaisedIrql const raised(HIGH_LEVEL);
    trace.put(nOXDIAG100::asIrql(KeGetCurrentIrql())).put(" ");
    trace.put(nOXDIAG100::asUnicodeString(&name)).put(" ");
    trace.put(nOXDIAG100::asNtStatus(0)).endl();
  }
  EXPECT_EQ(kept.text(), "HIGH_LEVEL (15) rack STATUS_SUCCESS (0x00000000)\n");
}

TEST(TraceIrql, LockedLinesAreWrittenAtApcLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  {
    tRaisedIrql const raised(APC_LEVEL);
    putLine(trace, "apc ");
  }
  EXPECT_EQ(kept.pieces.size(), 2u);
}

TEST(TraceIrql, LineThatCannotBeLockedIsWrittenAllTheSame) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    putLine(trace, "high ");
  }
  EXPECT_EQ(kept.pieces.size(), 2u);
  trace.disableMutex();
  EXPECT_EQ(trace.mutexIsEnabled(), 0u);
}

TEST(TraceIrql, SerialPortIsWaitedForAndWrittenAtDispatchLevel) {
  tSerialFile const file;
  tSerialTraceDestination serial;
  serial.open();
  vexkhost::setSerialModemLines(0);
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    serial.put("lost", 4);
    vexkhost::setSerialModemLines(0xB0);
    serial.put("high\n");
  }
  EXPECT_EQ(file.content(), "high\n\r");
}
