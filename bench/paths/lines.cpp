// Lines and blocks of a component: not written because the stream is off or because of the filter,
// and written to a destination that does nothing.

#include "benchedLine.h"
#include "measure.h"

namespace {

using nOXDIAG100::tTrace;

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

void endHidden(tTrace& trace, u32) {
  {
    tUncounted const uncounted;
    openByCall(trace, kHidden);
  }
  trace.endl();
}

void showBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(kShown);
  keepMemory();
}

void hideBlock(tTrace& trace, u32) {
  OXDIAG_BLOCK(kHidden);
  keepMemory();
}

}  // namespace

void measureLines() {
  measureLine("macro, stream off", 0, switchOff, showByMacro);
  measureLine("macro, hidden by its verbosity", 0, leave, hideByMacro);
  measureLine("macro, shown", 1, leave, showByMacro);
  measureLine("macro, shown with every field", 1, enableEveryField, showByMacro);
  measureLine("macro, shown with the line mutex", 1, lockLines, showByMacro);
  measureLine("six calls, shown", 1, leave, showByCalls);
  measureLine("endl of a hidden line", 0, leave, endHidden);
  measureLine("block, shown", 2, leave, showBlock);
  measureLine("block, hidden", 0, leave, hideBlock);
}
