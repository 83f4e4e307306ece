#include "trace/tTextsOnTheWay.h"

#include "oxdiagk/atomicWord.h"

namespace nOXDIAG100 {
namespace {

struct tDirection {
  // Both are null until the text says them.
  tDestinationSlot const* slot;
  iTraceDestination const* destination;
};

// The threads are apart from the rest, because every text looks through them.
constinit u32 threads[tTextsOnTheWay::kCapacity] = {};  // 0: the place is free
constinit tDirection directions[tTextsOnTheWay::kCapacity] = {};

// The places that have ever been used are the first ones, as many as there were texts at once.
constinit u32 usedPlaces = 0;

u32 getUsedPlaces() {
  return loadOrdered(usedPlaces);
}

u32 getThread(u32 place) {
  return loadOrdered(threads[place]);
}

// A text that has not said yet where it goes may go anywhere.
bool mayBeWithin(u32 place, iTraceDestination const& destination) {
  iTraceDestination const* const known = loadOrdered(directions[place].destination);
  return known == nullptr || known == &destination;
}

// Whoever finds the slot of a later text in the place also sees what the one before it has done.
bool mayComeThrough(u32 place, tDestinationSlot const* slot) {
  tDestinationSlot const* const known = loadAcquire(directions[place].slot);
  return slot == nullptr || known == nullptr || known == slot;
}

u32 countOwn(u32 thread) {
  u32 count = 0;
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    if (loadRelaxed(threads[place]) == thread) ++count;
  }
  return count;
}

// Whoever looks through the table behind a change of a slot finds the text, or the text finds the
// change.
bool take(u32 place, u32 thread) {
  u32 nobody = 0;
  return loadRelaxed(threads[place]) == 0 &&
         __atomic_compare_exchange_n(&threads[place], &nobody, thread, false, __ATOMIC_SEQ_CST,
                                     __ATOMIC_RELAXED);
}

void use(u32 place) {
  u32 used = getUsedPlaces();
  while (used <= place && !__atomic_compare_exchange_n(&usedPlaces, &used, place + 1, true,
                                                       __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST)) {
  }
}

}  // namespace

u32 tTextsOnTheWay::enter(u32 thread, tDestinationSlot const& slot) {
  if (countOwn(thread) >= kMostWithinEachOther) return kNoPlace;
  u32 place = 0;
  while (place < kCapacity && !take(place, thread)) ++place;
  if (place == kCapacity) return kNoPlace;
  use(place);
  storeRelease(directions[place].slot, &slot);
  return place;
}

void tTextsOnTheWay::direct(u32 place, iTraceDestination const& destination) {
  __atomic_store_n(&directions[place].destination, &destination, __ATOMIC_RELEASE);
}

void tTextsOnTheWay::leave(u32 place) {
  __atomic_store_n(&directions[place].slot, nullptr, __ATOMIC_RELEASE);
  __atomic_store_n(&directions[place].destination, nullptr, __ATOMIC_RELEASE);
  __atomic_store_n(&threads[place], 0, __ATOMIC_RELEASE);
}

u32 tTextsOnTheWay::findOther(u32 thread, iTraceDestination const& destination,
                              tDestinationSlot const* slot) {
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    u32 const other = getThread(place);
    if (other == 0 || other == thread) continue;
    if (mayBeWithin(place, destination) && mayComeThrough(place, slot)) return other;
  }
  return 0;
}

bool tTextsOnTheWay::isWithin(u32 thread, iTraceDestination const* destination) {
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    if (getThread(place) != thread) continue;
    if (destination == nullptr || mayBeWithin(place, *destination)) return true;
  }
  return false;
}

}  // namespace nOXDIAG100
