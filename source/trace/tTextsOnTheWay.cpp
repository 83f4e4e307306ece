#include "trace/tTextsOnTheWay.h"

namespace nOXDIAG100 {

constinit u32 tTextsOnTheWay::threads[kCapacity] = {};
constinit tTextsOnTheWay::tDirection tTextsOnTheWay::directions[kCapacity] = {};
constinit u32 tTextsOnTheWay::usedPlaces = 0;

u32 tTextsOnTheWay::takeAnyPlace(u32 thread) {
  u32 place = 0;
  while (place < kCapacity && (loadRelaxed(threads[place]) != 0 || !take(place, thread))) ++place;
  if (place == kCapacity) return kNoPlace;
  u32 used = loadOrdered(usedPlaces);
  while (used <= place && !__atomic_compare_exchange_n(&usedPlaces, &used, place + 1, true,
                                                       __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST)) {
  }
  return place;
}

// A text that has not said yet where it goes may go anywhere.
bool tTextsOnTheWay::mayBeWithin(u32 place, iTraceDestination const& destination) {
  iTraceDestination const* const known = loadOrdered(directions[place].destination);
  return known == nullptr || known == &destination;
}

// Whoever finds the slot of a later text in the place also sees what the one before it has done.
bool tTextsOnTheWay::mayComeThrough(u32 place, tDestinationSlot const* slot) {
  tDestinationSlot const* const known = loadAcquire(directions[place].slot);
  return slot == nullptr || known == nullptr || known == slot;
}

u32 tTextsOnTheWay::findOther(u32 thread, iTraceDestination const& destination,
                              tDestinationSlot const* slot) {
  for (u32 place = 0, end = loadOrdered(usedPlaces); place < end; ++place) {
    u32 const other = getThread(place);
    if (other == 0 || other == thread) continue;
    if (mayBeWithin(place, destination) && mayComeThrough(place, slot)) return other;
  }
  return 0;
}

bool tTextsOnTheWay::isWithin(u32 thread, iTraceDestination const* destination) {
  for (u32 place = 0, end = loadOrdered(usedPlaces); place < end; ++place) {
    if (getThread(place) != thread) continue;
    if (destination == nullptr || mayBeWithin(place, *destination)) return true;
  }
  return false;
}

}  // namespace nOXDIAG100
