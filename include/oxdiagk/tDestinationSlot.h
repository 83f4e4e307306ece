#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/atomicWord.h"

namespace nOXDIAG100 {

class iTraceDestination;

// The last part of a trace stream: which destination its texts go to, and whether they may. Part of
// tTrace, of use to nobody else.
//
// A slot is shut while its destination is closed and opened. Texts of other threads are dropped
// then; what the thread that shut it writes goes to whatever is current.
//
// Any thread may send at any IRQL that the destination allows. Everything else but get() is called
// by the holder of the lock that all streams configure under.
class OXDIAG_API tDestinationSlot {
 public:
  // `current` is a member of the stream: the destination, or null in a stream at rest, which drops
  // every text.
  explicit tDestinationSlot(iTraceDestination*& current) : current(current) {}
  tDestinationSlot(tDestinationSlot const&) = delete;
  tDestinationSlot& operator=(tDestinationSlot const&) = delete;

  // Hands `length` characters to the current destination, unless the slot is shut to this thread or
  // the thread is within too many puts already.
  void send(char const* text, u32 length);

  iTraceDestination* get() const { return loadOrdered(current); }

  // From here on texts go there. Does not wait for those that are on the way elsewhere.
  void install(iTraceDestination& next);

  // Shuts the slot for the holder with this bit, and opens it for that one; a slot is open when all
  // who shut it have opened it.
  void shut(u32 holder);
  void open(u32 holder);

  // Whether installing a destination has opened it, so that leaving it closes it.
  bool hasTaken = false;

  // Whether the current destination has been closed, because the stream goes to another one.
  bool isLeft = false;

  // Whether the current destination was opened by a switch within the one that is under way.
  bool isOpenedWithin = false;

 private:
  bool isOpenTo(u32 thread) const;

  iTraceDestination*& current;
  u32 shutter = 0;  // the thread that has shut the slot, 0 while it is open
  u32 holders = 0;  // a bit for each of its switches within each other that did
};

}  // namespace nOXDIAG100
