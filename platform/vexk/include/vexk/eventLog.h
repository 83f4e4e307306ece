#pragma once

// The event log: what happened to the modules, for whoever has to find out later why one does not
// run. The last kVexEventCount events are kept in the platform's own memory, where a debugger, a
// crash dump and vexReadEvent find them. Those that tell of a failure are printed to the debugger
// as well:
//
//     oxdiagk.dll load: 2.0.0f1 2027-01-31 18:05:09 oxdiagk/windows/x86_64/clang++/release, ssMain
//     at FFFFF80412345678
//     vexk registration - ssMain(0) of oxdiagk failed with status -50352
//
// Logging never waits or allocates, and works before vexkInitialize. An event may be lost when
// kVexEventCount others come while it is written. Any IRQL at which the arguments may be read,
// except where a wide text is formatted; any thread.

#include "compiler/types.h"
#include "vexk/api.h"
#include "vexk/moduleInfo.h"
#include "vexk/printFormat.h"

constexpr u32 kVexEventCount = 64;
constexpr u32 kVexEventTextSize = 232;  // bytes, with the terminator; what is longer is cut

// How grave an event is.
constexpr u32 kVexEventLife = 0;      // a turn of a module's life
constexpr u32 kVexEventFailure = 10;  // something that should have worked has not
constexpr u32 kVexEventNever = 0xFFFFFFFF;

struct tVexEvent {
  u64 number;  // 1 is the first since the platform's image was loaded
  i64 time;    // since 1 January 1601, 00:00 UTC, in units of 100 ns
  u32 level;
  char text[kVexEventTextSize];  // one line, without a newline
};

// Logs a turn of a module's life, on kVexEventLife: the reason (see "vexk/moduleInfo.h"), the
// module's file name and build string, and the entry that is about to be called, by name and
// address.
VEX_API void pkgModulePackageEventLog(u32 reason, char const* fileName, char const* buildString,
                                      char const* entryName, tModuleEntry* entry);

// Logs the component, the place in it, and a text formatted as by ssprintf. A newline at the end
// is left out. A null text counts as empty.
VEX_API void _vexLogEvent(char const* component, char const* location, u32 level,
                          char const* format, ...) VEX_PRINTF_FORMAT(4, 5)
    VEX_KERNEL_FORMAT(format);

// Gives the oldest event that is kept and has at least this number; false when there is none.
//
//     tVexEvent event;
//     for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) show(event);
VEX_API bool vexReadEvent(u64 leastNumber, tVexEvent& event);

// From now on events of this level and graver ones are printed: kVexEventFailure at first,
// kVexEventLife for all of them, kVexEventNever for none. Returns the level before.
VEX_API u32 vexPrintEvents(u32 leastLevel);
