#pragma once

#include "ntos/types.h"
#include "oxdiagk/atomicWord.h"

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
  static u32 enter(u32 thread, tDestinationSlot const& slot) {
    u32 const place = takePlace(thread);
    if (place != kNoPlace) storeRelease(directions[place].slot, &slot);
    return place;
  }

  // Says where the text at this place goes.
  static void direct(u32 place, iTraceDestination const& destination) {
    storeRelease(directions[place].destination, &destination);
  }

  static void leave(u32 place) {
    storeRelease(directions[place].slot, nullptr);
    storeRelease(directions[place].destination, nullptr);
    storeRelease(threads[place], 0);
  }

  // A thread other than `thread` that may be within this destination; 0 when there is none. With a
  // slot, only those that may have come through it.
  static u32 findOther(u32 thread, iTraceDestination const& destination,
                       tDestinationSlot const* slot);

  // Whether this thread may be within this destination, or within any when it is null.
  static bool isWithin(u32 thread, iTraceDestination const* destination);

 private:
  struct tDirection {
    // Both are null until the text says them.
    tDestinationSlot const* slot;
    iTraceDestination const* destination;
  };

  // The first of the places that have been used is free nearly always.
  static u32 takePlace(u32 thread) {
    u32 own = 0;
    u32 place = kNoPlace;
    for (u32 index = loadOrdered(usedPlaces); index-- != 0;) {
      u32 const found = loadRelaxed(threads[index]);
      if (found == 0) place = index;
      if (found == thread) ++own;
    }
    if (own >= kMostWithinEachOther) return kNoPlace;
    return place != kNoPlace && take(place, thread) ? place : takeAnyPlace(thread);
  }

  static u32 takeAnyPlace(u32 thread);

  // Whoever looks through the table behind a change of a slot finds the text, or the text finds the
  // change.
  static bool take(u32 place, u32 thread) {
    u32 nobody = 0;
    return __atomic_compare_exchange_n(&threads[place], &nobody, thread, false, __ATOMIC_SEQ_CST,
                                       __ATOMIC_RELAXED);
  }

  static u32 getThread(u32 place) { return loadOrdered(threads[place]); }
  static bool mayBeWithin(u32 place, iTraceDestination const& destination);
  static bool mayComeThrough(u32 place, tDestinationSlot const* slot);

  // The threads are apart from the rest, because every text looks through them; 0: the place is
  // free. The places that have ever been used are the first ones, as many as there were texts at
  // once.
  static u32 threads[kCapacity];
  static tDirection directions[kCapacity];
  static u32 usedPlaces;
};

}  // namespace nOXDIAG100
