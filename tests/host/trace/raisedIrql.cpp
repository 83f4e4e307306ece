// Tracing above PASSIVE_LEVEL. The executive stops the program when a call is made at an IRQL that
// its contract forbids, so these tests also show that no such call is made.

#include "keptLines.h"
#include "ntos/guid.h"
#include "ntos/irp.h"
#include "ntos/power.h"
#include "ntos/string.h"
#include "oxdiagk/kernelValues.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "startedModules.h"
#include "tRaisedIrql.h"
#include "vexk/serialSupport.h"

namespace {

using namespace nOXDIAG100;

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

// The executive has no memory to give at this level, so they allocate none either.
TEST(TraceIrql, ValuesOfTheKernelAreWrittenAtEveryLevel) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  UNICODE_STRING const wide = {8, 8, const_cast<wchar_t*>(L"rack")};
  ANSI_STRING const narrow = {3, 3, const_cast<char*>("bus")};
  GUID const guid = {};
  {
    tRaisedIrql const raised(HIGH_LEVEL);
    trace.put(asIrql(KeGetCurrentIrql())).put(" ").put(asNtStatus(0)).put(" ");
    trace.put(asUnicodeString(&wide)).put(" ").put(asAnsiString(&narrow)).put(" ");
    trace.put(asGuid(&guid)).endl();
    trace.put(asIrpMajor(IRP_MJ_PNP)).put(" ").put(asIrpMinor(IRP_MJ_PNP, 0)).put(" ");
    trace.put(asDevicePowerState(PowerDeviceD0)).put(" ");
    trace.put(asSystemPowerState(PowerSystemWorking)).put(" ").put(asKernelTime(0)).endl();
  }
  EXPECT_EQ(kept.text(),
            "HIGH_LEVEL (15) STATUS_SUCCESS (0x00000000) rack bus "
            "{00000000-0000-0000-0000-000000000000}\n"
            "IRP_MJ_PNP (0x1B) IRP_MN_START_DEVICE (0x00) PowerDeviceD0 (1) PowerSystemWorking (1) "
            "1601-01-01T00:00:00.0000000Z\n");
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
