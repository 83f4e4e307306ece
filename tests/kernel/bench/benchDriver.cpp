// oxdiagbench.sys: what lines cost in a driver, beside the same lines written by hand, in ticks of
// the time stamp counter; measured while the driver is loaded.

#include "benchedLine.h"
#include "ntos/debug.h"
#include "ntos/driver.h"
#include "tFloorStream.h"
#include "vexk/cpu.h"

namespace {

using nOXDIAG100::tTrace;

constexpr u32 kDumpLength = 256;  // bytes
constexpr u32 kBatches = 400;
constexpr u32 kLinesABatch = 50;

// Tenths of a tick that one line takes, in the shortest of many batches: the others were disturbed.
template <class tPutLine>
u32 measure(tPutLine putLine) {
  u64 shortest = ~0ull;
  for (u32 batch = 0; batch < kBatches; ++batch) {
    u64 const begin = vexReadTimeStampCounter();
    for (u32 line = 0; line < kLinesABatch; ++line) {
      putLine();
      __asm__ volatile("" ::: "memory");
    }
    u64 const ticks = vexReadTimeStampCounter() - begin;
    if (ticks < shortest) shortest = ticks;
  }
  return static_cast<u32>(shortest * 10 / kLinesABatch);
}

// `pieces` is what a line gives to each destination, which is looked at.
template <class tOurs, class tFloor>
void compare(char const* name, u32 pieces, void (*prepare)(tTrace& trace), tOurs putOurs,
             tFloor putFloor) {
  tNullDestination taken;
  tNullDestination takenFromFloor;
  tBenchStream trace(taken);
  tFloorStream floor(takenFromFloor);
  prepare(trace);
  u32 const ours = measure([&] { putOurs(trace, kSlot); });
  u32 const theirs = measure([&] { putFloor(floor); });
  bool const isDone = taken.getPieces() == u64{pieces} * kBatches * kLinesABatch &&
                      (pieces == 0 || takenFromFloor.getPieces() == taken.getPieces());
  DbgPrint("[oxb] %s %u.%u %u.%u %s\n", isDone ? "ok" : "FAILED", ours / 10, ours % 10, theirs / 10,
           theirs % 10, name);
}

void showBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(kShown);
  __asm__ volatile("" ::: "memory");
}

void hideBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(kHidden);
  __asm__ volatile("" ::: "memory");
}

// What every line does, for the time deltas of others.
void readCounterTwice(tFloorStream&) {
  u64 first = vexReadTimeStampCounter();
  u64 second = vexReadTimeStampCounter();
  __asm__ volatile("" : "+r"(first), "+r"(second));
}

void putFloorLine(tFloorStream& floor) {
  floor.putLine(kShown, kSlot);
}

void putFloorBlock(tFloorStream& floor, u32 verbosity) {
  floor.enterBlock(verbosity, "showBlock");
  floor.leaveBlock(verbosity, "showBlock");
}

void compareDumps() {
  static constinit u8 bytes[kDumpLength] = {};
  constexpr u32 kRows = kDumpLength / 16;
  compare(
      "hex dump of 256 bytes", kRows, leave,
      [](tTrace& trace, u32) { trace.put(static_cast<void const*>(bytes), kDumpLength, 4); },
      [](tFloorStream& floor) { floor.putDump(bytes, kDumpLength); });
}

void compareAll() {
  compare("macro, stream off", 0, switchOff, showByMacro, readCounterTwice);
  compare("macro, hidden", 0, leave, hideByMacro, readCounterTwice);
  compare("macro, shown", 1, leave, showByMacro, putFloorLine);
  compare("macro, every field", 1, enableEveryField, showByMacro,
          [](tFloorStream& floor) { floor.putFullLine(kShown, kSlot); });
  compare("six calls, shown", 1, leave, showByCalls, putFloorLine);
  compare("block, shown", 2, leave, showBlock,
          [](tFloorStream& floor) { putFloorBlock(floor, kShown); });
  compare("block, hidden", 0, leave, hideBlock,
          [](tFloorStream& floor) { putFloorBlock(floor, kHidden); });
  compareDumps();
  DbgPrint("[oxb] done\n");
}

void unload(DRIVER_OBJECT* /*driver*/) {
}

}  // namespace

extern "C" NTSTATUS DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = &unload;
  compareAll();
  return STATUS_SUCCESS;
}
