#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tDestinationSlot;

// Which threads are within the put of which destination, for all streams together: a table in
// static storage. Any IRQL, any thread; nothing here waits or allocates.
//
// A text is entered before it looks whether its stream lets texts through, and whoever looks into
// the table has shut the stream before. So each text either sees the shut stream, or is seen. Where
// a text goes is known a moment later; until then it counts everywhere.
class tTextsOnTheWay {
 public:
  // Texts that can be on the way at once, of all threads; a text beyond them is dropped.
  static constexpr u32 kCapacity = 256;

  // Puts of one thread within each other: a line, a line that its put traces, and so on. What such
  // a put traces deeper is dropped.
  static constexpr u32 kMostWithinEachOther = 4;

  static constexpr u32 kNoPlace = kCapacity;

  // Takes a place for a text of this thread; kNoPlace when the text is to be dropped. From here on
  // the text may be within any destination.
  static u32 enter(u32 thread, tDestinationSlot const& slot);

  // Says where the text at this place goes.
  static void direct(u32 place, iTraceDestination const& destination);

  static void leave(u32 place);

  // A thread other than `thread` that may be within this destination; 0 when there is none. With a
  // slot, only those that may have come through it.
  static u32 findOther(u32 thread, iTraceDestination const& destination,
                       tDestinationSlot const* slot);

  // Whether this thread may be within this destination, or within any when it is null.
  static bool isWithin(u32 thread, iTraceDestination const* destination);
};

}  // namespace nOXDIAG100
