#pragma once

#include "compiler/types.h"
#include "oxdiagk/atomicWord.h"
#include "vexk/cpu.h"

namespace nOXDIAG100 {

// When the lines of a trace stream began and ended, in ticks of the processor's counter, and what a
// time delta leaves out. Part of tTrace; a private stream may look at its own.
//
// The end of a line is stored after its lock is given back, so other threads may read it at that
// moment: each time is a word that is stored and read as a whole.
class tLineClock {
 public:
  // What a line is to the clock: one offset for each.
  enum tOffset : u32 { kBlockEntryOffset, kBlockExitOffset, kLineOffset, kOffsetCount };

  // A line began then.
  void start(u64 time) { storeRelaxed(lineStartTime, time); }
  u64 getStart() const { return loadRelaxed(lineStartTime); }

  // A line ends now.
  void end() { storeRelaxed(lastLineTime, vexReadTimeStampCounter()); }
  u64 getEnd() const { return loadRelaxed(lastLineTime); }
  void setEnd(u64 time) { storeRelaxed(lastLineTime, time); }

  u64 getOffset(u32 index) const { return loadRelaxed(offsets[index]); }
  void setOffset(u32 index, u64 ticks) { storeRelaxed(offsets[index], ticks); }

  // The delta of a line that began at `time`, with the ticks that lines which were not shown have
  // carried so far. A line that is shown uses them up, any other hands its delta on.
  u64 takeDelta(u64 time, tOffset offset, bool isShown, u64& carried) const {
    u64 const delta = time - (getOffset(offset) + getEnd()) + loadRelaxed(carried);
    storeRelaxed(carried, isShown ? 0 : delta);
    return delta;
  }

 private:
  u64 lastLineTime = 0;
  u64 offsets[kOffsetCount] = {};
  u64 lineStartTime = 0;
};

}  // namespace nOXDIAG100
