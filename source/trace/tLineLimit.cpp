#include "oxdiagk/tLineLimit.h"

#include "oxdiagk/atomicWord.h"
#include "vexk/timerTimebase.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kMillisecondsPerSecond = 1000;
constexpr u32 kBeginShift = 32;
constexpr u32 kMostLines = 0x80000000;  // in a second; what is left out has room behind them

// Of the counter below, which never changes its rate; 0 before it is first needed.
constinit u64 countsPerMillisecond = 0;

u64 findCountsPerMillisecond() {
  u32 const unit = tTimerTimebaseEfficient::getResolutionTimeUnit();
  u64 const unitsPerSecond = tTimerUtility::conversionTable[kTimeSecond][unit].numerator;
  u64 const countsPerSecond = unitsPerSecond / tTimerTimebaseEfficient::getResolutionValue();
  return countsPerSecond < kMillisecondsPerSecond ? 1 : countsPerSecond / kMillisecondsPerSecond;
}

// The counter of elapsed time: it may be read at any IRQL, nobody sets it as they do the time of
// day, and its rate is known, which that of the processor's counter is not.
u32 getMilliseconds() {
  u64 counts = loadRelaxed(countsPerMillisecond);
  if (counts == 0) {
    counts = findCountsPerMillisecond();
    storeRelaxed(countsPerMillisecond, counts);
  }
  return static_cast<u32>(tTimerTimebaseEfficient::getCounterValue() / counts);
}

// A thread may come with a time that is older than the second, which another one began meanwhile.
bool isWithin(u32 begin, u32 now) {
  return now - begin < kMillisecondsPerSecond || begin - now < kMillisecondsPerSecond;
}

bool isOver(u64 second, u32 now, u32 most) {
  u32 const begin = static_cast<u32>(second >> kBeginShift);
  u32 const count = static_cast<u32>(second);
  return count == 0 || !isWithin(begin, now) || count >= most + tLineLimit::kPatience;
}

}  // namespace

bool tLineLimit::admit(tRule rule, u32 n, u32& leftOut) {
  if (rule == kOnce) return admitFirst();
  return rule == kEveryNth ? admitNth(n) : admitAt(getMilliseconds(), n, leftOut);
}

bool tLineLimit::admitFirst() {
  return loadRelaxed(state) == 0 && __atomic_exchange_n(&state, 1, __ATOMIC_RELAXED) == 0;
}

bool tLineLimit::admitNth(u32 n) {
  return n != 0 && __atomic_fetch_add(&state, 1, __ATOMIC_RELAXED) % n == 0;
}

bool tLineLimit::admitAt(u32 milliseconds, u32 n, u32& leftOut) {
  u32 const most = n < kMostLines ? n : kMostLines;
  u64 const fresh = u64{milliseconds} << kBeginShift | 1;
  u64 known = loadRelaxed(state);
  u64 next;
  do {
    next = isOver(known, milliseconds, most) ? fresh : known + 1;
  } while (
      !__atomic_compare_exchange_n(&state, &known, next, true, __ATOMIC_RELAXED, __ATOMIC_RELAXED));
  if (static_cast<u32>(next) > most) {
    __atomic_fetch_add(&leftOutCount, 1, __ATOMIC_RELAXED);
    return false;
  }
  if (loadRelaxed(leftOutCount) != 0) {
    leftOut = __atomic_exchange_n(&leftOutCount, 0, __ATOMIC_RELAXED);
  }
  return true;
}

}  // namespace nOXDIAG100
