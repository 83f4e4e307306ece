// Lines and blocks of a component: not written because the stream is off or because of the filter,
// and written to a destination that does nothing.

#include "measure.h"
#include "tBenchStream.h"

#define OXDIAG_COMPONENT "slotbus"
#define OXDIAG_COMPONENT_VERSION kVersion
#define OXDIAG_TRACE_STREAM trace
#define OXDIAG_TRACE_FILE "examples/slotbus/component/tRackReader.cpp"

#include "oxdiagk/traceMacros.h"

namespace {

using nOXDIAG100::tTrace;

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0);
constexpr u32 kSlot = 17;

// A stream that is set up by `prepare`; `pieces` is how many a line gives.
template <class tPrepare, class tPutLine>
void measureLine(char const* path, u32 pieces, tPrepare prepare, tPutLine putLine) {
  tNullDestination destination;
  tBenchStream trace(destination);
  prepare(trace);
  u32 slot = kSlot;
  u32 lines = 0;
  measurePath(path, [&] {
    keep(slot);
    putLine(trace, slot);
    ++lines;
  });
  demand(destination.getPieces() == u64{lines} * pieces, path);
}

void leave(tTrace&) {
}

void enableEveryField(tTrace& trace) {
  trace.enableComponentVersion();
  trace.enableThreadId();
  trace.enableTimeStamp();
  trace.enableTimeDelta();
  trace.enableVerbosity();
  trace.setMinPrefixWidth(110);  // which holds them all
}

void showByMacro(tTrace& trace, u32 slot) {
  OXDIAG_TRACE(120, put("slot ").put(slot, 10).put(" answered"));
}

void hideByMacro(tTrace& trace, u32 slot) {
  OXDIAG_TRACE(60, put("slot ").put(slot, 10).put(" answered"));
}

void showByCalls(tTrace& trace, u32 slot) {
  trace
      .putPrefix("slotbus", kVersion, 118, "examples/slotbus/component/tRackReader.cpp", 120,
                 tTrace::kTraceLine)
      .put("slot ")
      .put(slot, 10)
      .put(" answered")
      .endl();
}

void endHidden(tTrace& trace, u32) {
  {
    tUncounted const uncounted;
    trace.putPrefix("slotbus", kVersion, 118, "examples/slotbus/component/tRackReader.cpp", 60,
                    tTrace::kTraceLine);
  }
  trace.endl();
}

void showBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(120);
  keepMemory();
}

void hideBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(60);
  keepMemory();
}

}  // namespace

void measureLines() {
  measureLine(
      "macro, stream off", 0, [](tTrace& trace) { trace.disable(); }, showByMacro);
  measureLine("macro, hidden by its verbosity", 0, leave, hideByMacro);
  measureLine("macro, shown", 1, leave, showByMacro);
  measureLine("macro, shown with every field", 1, enableEveryField, showByMacro);
  measureLine(
      "macro, shown with the line mutex", 1, [](tTrace& trace) { trace.enableMutex(); },
      showByMacro);
  measureLine("six calls, shown", 1, leave, showByCalls);
  measureLine("endl of a hidden line", 0, leave, endHidden);
  measureLine("block, shown", 2, leave, showBlock);
  measureLine("block, hidden", 0, leave, hideBlock);
}
