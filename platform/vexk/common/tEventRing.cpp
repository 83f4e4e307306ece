#include "tEventRing.h"

#include "compiler/compiler.h"

using nCompiler::loadAcquire;
using nCompiler::storeRelease;

// A place's number is written before and after its content, and read the same way; releasing and
// acquiring every part of it keeps that order.
constinit tEventRing vexEventRing;

void tEventRing::add(u32 level, i64 time, char const* text) {
  u64 const number = __atomic_add_fetch(&lastNumber, 1, __ATOMIC_ACQ_REL);
  tPlace& place = places[number % kVexEventCount];
  if (__atomic_exchange_n(&place.isWritten, 1, __ATOMIC_ACQUIRE) != 0) return;
  // Who was held up on the way here may be too late.
  if (loadAcquire(place.number) < number) replace(place, number, level, time, text);
  storeRelease(place.isWritten, u32{0});
}

void tEventRing::replace(tPlace& place, u64 number, u32 level, i64 time, char const* text) {
  storeRelease(place.number, u64{0});
  storeRelease(place.time, time);
  storeRelease(place.level, level);
  writeText(place, text);
  storeRelease(place.number, number);
}

void tEventRing::writeText(tPlace& place, char const* text) {
  u32 length = 0;
  for (; length + 1 < kVexEventTextSize && text[length] != '\0'; ++length) {
    storeRelease(place.text[length], text[length]);
  }
  storeRelease(place.text[length], '\0');
}

bool tEventRing::read(u64 leastNumber, tVexEvent& event) const {
  u64 const last = loadAcquire(lastNumber);
  u64 const oldest = last < kVexEventCount ? 1 : last - kVexEventCount + 1;
  for (u64 number = leastNumber < oldest ? oldest : leastNumber; number <= last; ++number) {
    if (copy(number, event)) return true;
  }
  return false;
}

bool tEventRing::copy(u64 number, tVexEvent& event) const {
  tPlace const& place = places[number % kVexEventCount];
  if (loadAcquire(place.number) != number) return false;
  event.number = number;
  event.time = loadAcquire(place.time);
  event.level = loadAcquire(place.level);
  for (u32 index = 0; index < kVexEventTextSize; ++index)
    event.text[index] = loadAcquire(place.text[index]);
  event.text[kVexEventTextSize - 1] = '\0';
  return loadAcquire(place.number) == number;
}
