#pragma once

#include "trace/tPatience.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tDestinationSlot;
class tTraceParts;

// What a thread holds while it changes destinations: lines of streams, so that those of other
// threads wait, and slots, so that text without a line stays out. Everything is let go at the end
// of the scope. Under the streams' lock; holds lie within each other.
class tStreamHold {
 public:
  // What a destination does while it is opened may hold streams again, but not without end.
  static constexpr u32 kMostWithinEachOther = 4;

  tStreamHold();
  ~tStreamHold();
  tStreamHold(tStreamHold const&) = delete;
  tStreamHold& operator=(tStreamHold const&) = delete;

  // Whether this hold is one too many: then there is to be no switch.
  bool isTooDeep() const { return bit > 1u << (kMostWithinEachOther - 1); }

  // Holds the stream's lines, if its line mutex is on. False when the patience is over first.
  bool holdLines(tTraceParts& stream, tPatience const& patience);

  // The same of all streams that use the destination.
  bool holdLinesOfUsers(iTraceDestination const& destination, tPatience const& patience);

  // The thread whose line was waited for in vain; 0 when the streams do not know it, or when the
  // lock went from one thread to another meanwhile.
  u32 getLineOwner() const { return lineOwner; }

  // Keeps the text of all other threads out of the stream, which is dropped.
  void shut(tTraceParts& stream);

  // The same of all streams that use the destination.
  void shutUsers(iTraceDestination const& destination);

  // Waits until no other thread is within the destination, or, with a slot, none that has come
  // through it. Returns 0, or the thread that is still there when the patience is over.
  static u32 awaitNobodyWithin(iTraceDestination const& destination, tDestinationSlot const* slot,
                               tPatience const& patience);

  // Lets text into all streams again that this hold has shut. Their lines stay held.
  void open();

 private:
  u32 const bit;
  u32 lineOwner = 0;
};

}  // namespace nOXDIAG100
