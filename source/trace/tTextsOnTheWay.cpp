#include "trace/tTextsOnTheWay.h"

namespace nOXDIAG100 {
namespace {

struct tDirection {
  tDestinationSlot const* slot;
  iTraceDestination const* destination;  // null while the text goes nowhere
};

// The threads are apart from the rest, because every text looks through them.
constinit u32 threads[tTextsOnTheWay::kCapacity] = {};  // 0: the place is free
constinit tDirection directions[tTextsOnTheWay::kCapacity] = {};

// The places that have ever been used are the first ones, as many as there were texts at once.
constinit u32 usedPlaces = 0;

u32 getUsedPlaces() {
  return __atomic_load_n(&usedPlaces, __ATOMIC_SEQ_CST);
}

u32 getThread(u32 place) {
  return __atomic_load_n(&threads[place], __ATOMIC_RELAXED);
}

iTraceDestination const* getDestination(u32 place) {
  return __atomic_load_n(&directions[place].destination, __ATOMIC_SEQ_CST);
}

tDestinationSlot const* getSlot(u32 place) {
  return __atomic_load_n(&directions[place].slot, __ATOMIC_RELAXED);
}

u32 countOwn(u32 thread) {
  u32 count = 0;
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    if (getThread(place) == thread) ++count;
  }
  return count;
}

bool take(u32 place, u32 thread) {
  u32 nobody = 0;
  return getThread(place) == 0 &&
         __atomic_compare_exchange_n(&threads[place], &nobody, thread, false, __ATOMIC_ACQUIRE,
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
  __atomic_store_n(&directions[place].slot, &slot, __ATOMIC_RELAXED);
  return place;
}

void tTextsOnTheWay::direct(u32 place, iTraceDestination* destination) {
  __atomic_store_n(&directions[place].destination, destination, __ATOMIC_SEQ_CST);
}

void tTextsOnTheWay::leave(u32 place) {
  __atomic_store_n(&directions[place].destination, nullptr, __ATOMIC_RELEASE);
  __atomic_store_n(&threads[place], 0, __ATOMIC_RELEASE);
}

u32 tTextsOnTheWay::findOther(u32 thread, iTraceDestination const& destination,
                              tDestinationSlot const* slot) {
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    if (getDestination(place) != &destination) continue;
    u32 const other = getThread(place);
    bool const isMeant = slot == nullptr || getSlot(place) == slot;
    if (other != 0 && other != thread && isMeant) return other;
  }
  return 0;
}

bool tTextsOnTheWay::isWithin(u32 thread, iTraceDestination const* destination) {
  for (u32 place = 0, end = getUsedPlaces(); place < end; ++place) {
    if (getThread(place) != thread) continue;
    if (destination == nullptr || getDestination(place) == destination) return true;
  }
  return false;
}

}  // namespace nOXDIAG100
