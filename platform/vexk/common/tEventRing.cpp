#include "tEventRing.h"

namespace {

// A place's number is written before and after its content, and read the same way; releasing and
// acquiring every part of it keeps that order.
template <class T>
void put(T& to, T value) {
  __atomic_store_n(&to, value, __ATOMIC_RELEASE);
}

template <class T>
T get(T const& from) {
  return __atomic_load_n(&from, __ATOMIC_ACQUIRE);
}

}  // namespace

constinit tEventRing vexEventRing;

void tEventRing::add(u32 level, i64 time, char const* text) {
  u64 const number = __atomic_add_fetch(&lastNumber, 1, __ATOMIC_ACQ_REL);
  tPlace& place = places[number % kVexEventCount];
  if (__atomic_exchange_n(&place.isWritten, 1, __ATOMIC_ACQUIRE) != 0) return;
  // Who was held up on the way here may be too late.
  if (get(place.number) < number) replace(place, number, level, time, text);
  put(place.isWritten, u32{0});
}

void tEventRing::replace(tPlace& place, u64 number, u32 level, i64 time, char const* text) {
  put(place.number, u64{0});
  put(place.time, time);
  put(place.level, level);
  writeText(place, text);
  put(place.number, number);
}

void tEventRing::writeText(tPlace& place, char const* text) {
  u32 length = 0;
  for (; length + 1 < kVexEventTextSize && text[length] != '\0'; ++length) {
    put(place.text[length], text[length]);
  }
  put(place.text[length], '\0');
}

bool tEventRing::read(u64 leastNumber, tVexEvent& event) const {
  u64 const last = get(lastNumber);
  u64 const oldest = last < kVexEventCount ? 1 : last - kVexEventCount + 1;
  for (u64 number = leastNumber < oldest ? oldest : leastNumber; number <= last; ++number) {
    if (copy(number, event)) return true;
  }
  return false;
}

bool tEventRing::copy(u64 number, tVexEvent& event) const {
  tPlace const& place = places[number % kVexEventCount];
  if (get(place.number) != number) return false;
  event.number = number;
  event.time = get(place.time);
  event.level = get(place.level);
  for (u32 index = 0; index < kVexEventTextSize; ++index)
    event.text[index] = get(place.text[index]);
  event.text[kVexEventTextSize - 1] = '\0';
  return get(place.number) == number;
}
