#pragma once

#include "oxdiagk/atomicWord.h"
#include "oxdiagk/tConfigurationLock.h"
#include "oxdiagk/tDestinationSlot.h"
#include "oxdiagk/tLineBuffer.h"
#include "oxdiagk/tLineClock.h"
#include "oxdiagk/tLineLock.h"
#include "oxdiagk/tLineShape.h"
#include "oxdiagk/tTraceFilter.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// What debuggers and their extensions find in a trace stream: the order of these members is part of
// its interface, and what else a stream has follows them.
struct tTraceMembers {
  iTraceDestination* destination = nullptr;
  tTraceFilter* filter = nullptr;
  _STL::vector<char*> savedConfigurations = {};
  u32 enabled = 0;
  u32 switches[tLineShape::kSwitchCount] = {};  // by tLineShape::tSwitch
  u32 lineSuppressed = 0;
  u32 minPrefixWidth = 0;
  i32 nestingLevel = 0;
  tLineClock clock;
  iSync* mutexObject = nullptr;
  u32 mutexKernelToken[2] = {};
  tLineBuffer buffer;
  u64 carriedDelta = 0;
};

// The parts of a trace stream, for those who work on it within the library. A line goes through
// them one way: the lock, the filter's judgement, the prefix and what follows it into the buffer,
// and from there through the slot to the destination.
class OXDIAG_API tTraceParts : public tTraceMembers {
 public:
  explicit tTraceParts(iTraceDestination& first);

  // Of a stream before and after its life.
  explicit tTraceParts(tAtRest);

  tTraceParts(tTraceParts const&) = delete;
  tTraceParts& operator=(tTraceParts const&) = delete;

  // A stream that is built has a destination.
  bool isBuilt() const { return slot.get() != nullptr; }

  // The switches, the master switch among them, and the width of prefixes.
  tLineShape getShape() const { return tLineShape(loadRelaxed(shape)); }
  void turn(tLineShape::tSwitch which, bool isOn);
  void setWidth(u32 width);

  // Whether text that is put now is written.
  bool isWriting() const {
    return getShape().isOn(tLineShape::kEnabled) && loadRelaxed(lineSuppressed) == 0;
  }

  // Whether a line of this verbosity needs no look at anything else to be hidden.
  bool isSurelyHidden(u32 verbosity) const {
    tLineShape const now = getShape();
    if (!now.isHiddenQuietly()) return false;
    if (!now.isOn(tLineShape::kEnabled)) return true;
    return filter != nullptr && filter->isSurelyHidden(verbosity);
  }

  void append(char const* text, u64 length) {
    if (isWriting()) buffer.append(text, length, slot);
  }

  // Between them `isPassed` says whether text is written; behind them the verdict of the thread's
  // line around this one does, if there is one. Remembers 32 lines within each other.
  void beginVerdict(bool isPassed) {
    storeRelaxed(lineSuppressed, isPassed ? 0 : 1);
    if (!isPassed || loadRelaxed(hiddenLines) != 0) rememberVerdict(isPassed);
  }
  void endVerdict() {
    if (loadRelaxed(hiddenLines) == 0) {
      storeRelaxed(lineSuppressed, 0);
    } else {
      recallVerdict();
    }
  }

  // A line of its own about a switch of destinations, from two texts.
  void announce(char const* text, char const* rest = "");

  tLineLock lock{mutexObject, mutexKernelToken};
  tDestinationSlot slot{destination};
  tTraceParts* nextStream = nullptr;  // in the list of all streams
  bool isEnding = false;              // from the beginning of its end

 private:
  explicit tTraceParts(tLineShape first);

  void rememberVerdict(bool isPassed);
  void recallVerdict();

  template <class Change>
  void change(Change changed);
  template <class Read>
  void follow(u32& member, Read read);

  u64 shape;            // what lines go by: the switches and the width in one word
  u64 hiddenLines = 0;  // a thread's open lines, see beginVerdict
};

}  // namespace nOXDIAG100
